#include "fontmanager/ReplyWriter.h"

#include <cstdint>

namespace Vellumine {

namespace {

constexpr const char* replacementCharacter = "\xEF\xBF\xBD";

// Length of the valid UTF-8 sequence at `at` that XML allows as a character, or 0.
std::size_t xmlCharacterLength(const std::string& text, std::size_t at) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[at + i]); };
    const unsigned char lead = byte(0);
    std::size_t length = 0;
    std::uint32_t code = 0;
    if (lead < 0x80) {
        return 1;
    } else if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
        code = lead & 0x1Fu;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        code = lead & 0x0Fu;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        code = lead & 0x07u;
    } else {
        return 0;
    }
    if (at + length > text.size()) {
        return 0;
    }
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0u) != 0x80u) {
            return 0;
        }
        code = (code << 6) | (byte(i) & 0x3Fu);
    }
    const bool overlong = (length == 3 && code < 0x800) || (length == 4 && code < 0x10000);
    const bool forbidden =
        (code >= 0xD800 && code <= 0xDFFF) || code == 0xFFFE || code == 0xFFFF || code > 0x10FFFF;
    return overlong || forbidden ? 0 : length;
}

bool isAngle(char c) {
    return c == '<' || c == '>';
}

} // namespace

std::string ReplyWriter::encodeValue(const std::string& value) {
    std::string encoded;
    encoded.reserve(value.size());
    std::size_t at = 0;
    while (at < value.size()) {
        const char c = value[at];
        if (isAngle(c)) {
            const std::size_t end = value.find_first_not_of("<>", at);
            encoded += "<![CDATA[" + value.substr(at, end - at) + "]]>";
            at = end == std::string::npos ? value.size() : end;
            continue;
        }
        if (static_cast<unsigned char>(c) < 0x20 && c != '\t') {
            encoded += ' ';
            ++at;
            continue;
        }
        const std::size_t length = xmlCharacterLength(value, at);
        if (length == 0) {
            encoded += replacementCharacter;
            ++at;
            continue;
        }
        encoded.append(value, at, length);
        at += length;
    }
    return encoded;
}

ReplyWriter::ReplyWriter(const std::string& command, const std::string& protocolVersion) {
    text = "<cmd>" + command + "</cmd>\n";
    element("protocolVersion", protocolVersion);
}

ReplyWriter& ReplyWriter::element(const std::string& name, const std::string& value) {
    text += "<" + name + ">" + encodeValue(value) + "</" + name + ">\n";
    return *this;
}

ReplyWriter& ReplyWriter::element(const std::string& name, bool value) {
    return element(name, std::string(value ? "true" : "false"));
}

ReplyWriter& ReplyWriter::openFont() {
    text += "<font>\n";
    return *this;
}

ReplyWriter& ReplyWriter::closeFont() {
    text += "</font>\n";
    return *this;
}

ReplyWriter& ReplyWriter::fontInfo(const std::string& containerID, const std::string& description) {
    text += "<fontInfo>\n";
    element("containerID", containerID);
    element("description", description);
    text += "</fontInfo>\n";
    return *this;
}

std::string ReplyWriter::finish() {
    text += "</cmd>\n";
    return std::move(text);
}

} // namespace Vellumine
