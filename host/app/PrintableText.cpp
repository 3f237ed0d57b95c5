#include "host/app/PrintableText.h"

#include <cstdio>

namespace Galley {

namespace {

// The length of the well-formed UTF-8 sequence at `at`, or 0 when it is not one (a stray
// continuation byte, a truncated or overlong sequence, a surrogate, beyond U+10FFFF).
std::size_t sequenceLength(const std::string& text, std::size_t at) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char lead = byte(at);
    if (lead < 0x80)
        return 1;
    std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC2 ? 2 : 0;
    if (length == 0 || lead > 0xF4 || at + length > text.size())
        return 0;
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(at + i) & 0xC0) != 0x80)
            return 0;
    }
    const unsigned char second = byte(at + 1);
    if ((lead == 0xE0 && second < 0xA0) || (lead == 0xED && second >= 0xA0) ||
        (lead == 0xF0 && second < 0x90) || (lead == 0xF4 && second >= 0x90))
        return 0;
    return length;
}

// U+0080 to U+009F, the C1 controls, written as C2 80 to C2 9F.
bool isC1Control(const std::string& text, std::size_t at, std::size_t length) {
    return length == 2 && static_cast<unsigned char>(text[at]) == 0xC2 &&
           static_cast<unsigned char>(text[at + 1]) < 0xA0;
}

std::string hexEscape(const char* format, unsigned value) {
    char escaped[8];
    std::snprintf(escaped, sizeof escaped, format, value);
    return escaped;
}

} // namespace

std::string printableText(const std::string& text) {
    std::string out;
    for (std::size_t i = 0; i < text.size();) {
        const unsigned char c = static_cast<unsigned char>(text[i]);
        const std::size_t length = sequenceLength(text, i);
        if (c == '\\')
            out += "\\\\";
        else if (c == '\n')
            out += "\\n";
        else if (c == '\t')
            out += "\\t";
        else if (c == '\r')
            out += "\\r";
        else if (length == 0 || c < 0x20 || c == 0x7F)
            out += hexEscape("\\x%02x", c);
        else if (isC1Control(text, i, length))
            out += hexEscape("\\u%04x", static_cast<unsigned char>(text[i + 1]));
        else
            out.append(text, i, length);
        i += length ? length : 1;
    }
    return out;
}

std::string jsonString(const std::string& text) {
    std::string out = "\"";
    for (std::size_t i = 0; i < text.size();) {
        const unsigned char c = static_cast<unsigned char>(text[i]);
        const std::size_t length = sequenceLength(text, i);
        if (c == '"')
            out += "\\\"";
        else if (c == '\\')
            out += "\\\\";
        else if (c == '\n')
            out += "\\n";
        else if (c == '\t')
            out += "\\t";
        else if (c == '\r')
            out += "\\r";
        else if (c < 0x20)
            out += hexEscape("\\u%04x", c);
        else if (length == 0)
            out += "\\ufffd";
        else
            out.append(text, i, length);
        i += length ? length : 1;
    }
    return out + "\"";
}

} // namespace Galley
