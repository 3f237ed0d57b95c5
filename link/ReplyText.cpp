#include "link/ReplyText.h"

#include <boost/algorithm/string/replace.hpp>

#include <string_view>

namespace VLM {

namespace {

constexpr std::string_view closingTag = "</cmd>";

} // namespace

std::string joinReplyLines(const std::string& reply) {
    std::string joined;
    joined.reserve(reply.size());
    std::string_view rest = reply;
    while (true) {
        const std::size_t lineFeed = rest.find('\n');
        std::string_view piece = rest.substr(0, lineFeed);
        if (piece.size() > closingTag.size() && piece.ends_with(closingTag)) {
            piece.remove_suffix(closingTag.size());
        }
        joined.append(piece);
        if (lineFeed == std::string_view::npos) {
            return joined;
        }
        rest.remove_prefix(lineFeed + 1);
    }
}

std::string escapeAmpersands(const std::string& text) {
    return boost::replace_all_copy(text, "&", "&amp;");
}

} // namespace VLM
