#pragma once

#include <string>

// Pieces of a request text. Values are written as they stand, without XML escaping: the
// font manager reads them raw.
namespace VLM::RequestText {

// "<cmd>NAME</cmd>\n": every request opens with a complete <cmd> element ...
std::string command(const std::string& name);
// ... and closes with a lone "</cmd>\n", one closing tag more than opening ones.
std::string end();
// "<NAME>VALUE</NAME>\n"
std::string element(const std::string& name, const std::string& value);
std::string fontOpening();
std::string fontClosing();
// Whether a host-side container choice names a container: a decimal integer above 0.
bool namesContainer(const std::string& selectedContainerID);

} // namespace VLM::RequestText
