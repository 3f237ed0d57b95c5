#pragma once

#include <string>

namespace VLM {

// The font manager answers in lines: an opening "<cmd>NAME</cmd>" line, element lines,
// and a lone "</cmd>" line. Joining the lines without separators and dropping every
// line-ending "</cmd>" except the lone closing one turns the reply into one <cmd>
// element whose children the reply parsers walk.
std::string joinReplyLines(const std::string& reply);

// Reply values are written raw; every "&" is escaped before the text is parsed as XML.
std::string escapeAmpersands(const std::string& text);

} // namespace VLM
