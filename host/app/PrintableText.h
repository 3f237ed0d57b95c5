#pragma once

#include <string>

namespace Galley {

// Names come from documents and file systems and may hold anything: line breaks that would
// forge rows of a table, bytes that are not UTF-8. These make them safe to print.

// For a terminal: control characters and bytes that are not UTF-8 become C-style escapes
// (\n, \t, \x1b), and a backslash is doubled, so that the printed text maps back to one name.
std::string printableText(const std::string& text);

// A JSON string literal, quotes included. Bytes that are not UTF-8 become U+FFFD, so the
// result is always valid JSON.
std::string jsonString(const std::string& text);

} // namespace Galley
