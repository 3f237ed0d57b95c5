#include "sdk/WideString.h"

namespace {

bool isHighSurrogate(char16_t u) {
    return u >= 0xD800 && u <= 0xDBFF;
}
bool isLowSurrogate(char16_t u) {
    return u >= 0xDC00 && u <= 0xDFFF;
}
bool startsPair(const std::u16string& units, std::size_t i) {
    return isHighSurrogate(units[i]) && i + 1 < units.size() && isLowSurrogate(units[i + 1]);
}

// Decodes one UTF-8 sequence at `i`; returns U+FFFD and skips one byte when malformed.
char32_t decodeUTF8(std::string_view s, std::size_t& i) {
    const auto byte = [&](std::size_t k) { return static_cast<unsigned char>(s[k]); };
    const unsigned char lead = byte(i);
    int length = 0;
    char32_t cp = 0;
    if (lead < 0x80) {
        ++i;
        return lead;
    } else if ((lead & 0xE0) == 0xC0) {
        length = 2;
        cp = lead & 0x1F;
    } else if ((lead & 0xF0) == 0xE0) {
        length = 3;
        cp = lead & 0x0F;
    } else if ((lead & 0xF8) == 0xF0) {
        length = 4;
        cp = lead & 0x07;
    } else {
        ++i;
        return 0xFFFD;
    }
    if (i + length > s.size()) {
        ++i;
        return 0xFFFD;
    }
    for (int k = 1; k < length; ++k) {
        if ((byte(i + k) & 0xC0) != 0x80) {
            ++i;
            return 0xFFFD;
        }
        cp = (cp << 6) | (byte(i + k) & 0x3F);
    }
    static constexpr char32_t minimum[5] = {0, 0, 0x80, 0x800, 0x10000};
    if (cp < minimum[length] || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) {
        ++i;
        return 0xFFFD;
    }
    i += length;
    return cp;
}

void appendUTF8(std::string& out, char32_t cp) {
    if (cp < 0x80) {
        out += static_cast<char>(cp);
    } else if (cp < 0x800) {
        out += static_cast<char>(0xC0 | (cp >> 6));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else if (cp < 0x10000) {
        out += static_cast<char>(0xE0 | (cp >> 12));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (cp >> 18));
        out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    }
}

} // namespace

WideString WideString::fromUTF8(std::string_view utf8) {
    WideString result;
    result.units.reserve(utf8.size());
    for (std::size_t i = 0; i < utf8.size();) {
        result.Append(decodeUTF8(utf8, i));
    }
    return result;
}

std::size_t WideString::CharCount() const {
    std::size_t count = 0;
    for (std::size_t i = 0; i < units.size(); ++i, ++count) {
        if (startsPair(units, i)) {
            ++i;
        }
    }
    return count;
}

char32_t WideString::GetCodePoint(std::size_t index) const {
    std::size_t i = 0;
    for (std::size_t n = 0; n < index && i < units.size(); ++n) {
        i += startsPair(units, i) ? 2 : 1;
    }
    if (i >= units.size()) {
        return 0;
    }
    if (startsPair(units, i)) {
        return 0x10000 + ((char32_t(units[i]) - 0xD800) << 10) + (char32_t(units[i + 1]) - 0xDC00);
    }
    return units[i];
}

void WideString::Append(char32_t cp) {
    if (cp >= 0x10000 && cp <= 0x10FFFF) {
        cp -= 0x10000;
        units += static_cast<char16_t>(0xD800 + (cp >> 10));
        units += static_cast<char16_t>(0xDC00 + (cp & 0x3FF));
    } else {
        units += static_cast<char16_t>(cp > 0x10FFFF ? 0xFFFD : cp);
    }
}

std::string WideString::ToUTF8() const {
    std::string out;
    out.reserve(units.size());
    for (std::size_t i = 0; i < units.size(); ++i) {
        char32_t cp = units[i];
        if (startsPair(units, i)) {
            cp = 0x10000 + ((cp - 0xD800) << 10) + (char32_t(units[i + 1]) - 0xDC00);
            ++i;
        } else if (cp >= 0xD800 && cp <= 0xDFFF) {
            cp = 0xFFFD;
        }
        appendUTF8(out, cp);
    }
    return out;
}
