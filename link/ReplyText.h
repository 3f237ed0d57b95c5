#pragma once

#include <cstddef>
#include <string>

namespace VLM {

// The font manager answers in lines: an opening "<cmd>NAME</cmd>" line, element lines,
// and a lone "</cmd>" line. Joining the lines without separators and dropping every
// line-ending "</cmd>" except the lone closing one turns the reply into one <cmd>
// element whose children the reply parsers walk.
std::string joinReplyLines(const std::string& reply);

// Reply values are written raw; every "&" is escaped before the text is parsed as XML.
std::string escapeAmpersands(const std::string& text);

// What no conforming font manager sends (vellumine keeps within both): a reply past 16 MiB,
// or a <font> listing more than 100 candidates (<fontInfo>). Parsing costs many times a
// reply's size, so a reply beyond them is refused before its lines are joined or parsed.
constexpr std::size_t maxReplyBytes = 16u * 1024 * 1024;
constexpr std::size_t maxCandidatesPerFont = 100;

// Whether `reply` keeps within those limits; when not, `why` says what it passed. One pass
// over the text, skipping CDATA sections and comments, without copying it.
bool withinReplyLimits(const std::string& reply, std::string& why);

} // namespace VLM
