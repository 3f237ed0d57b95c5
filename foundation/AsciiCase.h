#pragma once

#include <algorithm>
#include <string>
#include <string_view>

// Case folding of ASCII letters only: font names, file extensions and command words are
// compared so, whatever the user's locale (in a Turkish locale, "I" would not lower to "i").
// Header-only, for the host and the font manager as much as for the plug-in.
namespace AsciiCase {

inline char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

inline std::string lowered(std::string_view text) {
    std::string out(text);
    std::transform(out.begin(), out.end(), out.begin(), lower);
    return out;
}

inline bool equal(std::string_view a, std::string_view b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(),
                                              [](char x, char y) { return lower(x) == lower(y); });
}

} // namespace AsciiCase
