#pragma once

#include <string>

namespace Galley {

// Text as it may stand in XML content or in a double-quoted attribute: the markup characters
// as entities, and tab and line breaks as character references, so that an attribute keeps
// them through a reader's normalisation. Header-only, so that tools writing IDML for tests
// escape exactly as Galley does without linking Galley.
inline std::string xmlEscape(const std::string& text) {
    std::string out;
    out.reserve(text.size());
    for (char c : text) {
        switch (c) {
        case '&':
            out += "&amp;";
            break;
        case '<':
            out += "&lt;";
            break;
        case '>':
            out += "&gt;";
            break;
        case '"':
            out += "&quot;";
            break;
        case '\t':
            out += "&#9;";
            break;
        case '\n':
            out += "&#10;";
            break;
        case '\r':
            out += "&#13;";
            break;
        default:
            out += c;
        }
    }
    return out;
}

} // namespace Galley
