#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// The host's wide string: UTF-16 storage. A character is a code point, so a surrogate pair
// counts as one character; an unpaired surrogate counts as one character of its own value.
class WideString {
public:
    WideString() = default;
    explicit WideString(std::u16string units) : units(std::move(units)) {}
    // From UTF-8; invalid bytes become U+FFFD.
    static WideString fromUTF8(std::string_view utf8);

    // Number of characters (code points).
    std::size_t CharCount() const;
    // Number of UTF-16 code units held.
    std::size_t UTF16Count() const { return units.size(); }
    bool empty() const { return units.empty(); }

    // Code point of character `index` (0 <= index < CharCount()).
    char32_t GetCodePoint(std::size_t index) const;

    void Append(char32_t codePoint);
    const std::u16string& Units() const { return units; }
    // UTF-8 form; an unpaired surrogate becomes U+FFFD.
    std::string ToUTF8() const;

    friend bool operator==(const WideString&, const WideString&) = default;

private:
    std::u16string units;
};
