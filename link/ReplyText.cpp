#include "link/ReplyText.h"

#include <boost/algorithm/string/replace.hpp>

#include <algorithm>
#include <string_view>

namespace VLM {

namespace {

constexpr std::string_view closingTag = "</cmd>";

// Whether `text` starts with the start tag `<name>`, `<name ...>` or `<name/>`.
bool startsWithTag(std::string_view text, std::string_view name) {
    if (text.size() < name.size() + 2 || text.substr(1, name.size()) != name) {
        return false;
    }
    const char after = text[name.size() + 1];
    return after == '>' || after == '/' || after == ' ' || after == '\t' || after == '\n' ||
           after == '\r';
}

// The most candidates any one <font> of `reply` lists.
std::size_t mostCandidatesInOneFont(std::string_view reply) {
    std::size_t most = 0;
    std::size_t inFont = 0;
    for (std::size_t at = reply.find('<'); at != std::string_view::npos;
         at = reply.find('<', at + 1)) {
        const std::string_view rest = reply.substr(at);
        if (rest.starts_with("<![CDATA[") || rest.starts_with("<!--")) {
            at = reply.find(rest[1] == '[' ? "]]>" : "-->", at);
            if (at == std::string_view::npos) {
                break;
            }
        } else if (startsWithTag(rest, "font")) {
            inFont = 0;
        } else if (startsWithTag(rest, "fontInfo")) {
            most = std::max(most, ++inFont);
        }
    }
    return most;
}

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

bool withinReplyLimits(const std::string& reply, std::string& why) {
    if (reply.size() > maxReplyBytes) {
        why = "it holds " + std::to_string(reply.size()) + " bytes, more than the " +
              std::to_string(maxReplyBytes >> 20) + " MiB a font manager sends";
        return false;
    }
    const std::size_t candidates = mostCandidatesInOneFont(reply);
    if (candidates > maxCandidatesPerFont) {
        why = "a font in it lists " + std::to_string(candidates) + " candidates, more than the " +
              std::to_string(maxCandidatesPerFont) + " a font manager sends";
        return false;
    }
    return true;
}

std::string escapeAmpersands(const std::string& text) {
    return boost::replace_all_copy(text, "&", "&amp;");
}

} // namespace VLM
