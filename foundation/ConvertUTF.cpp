#include "foundation/ConvertUTF.h"

namespace Tamrik::UTF {

namespace {

constexpr UTF32 replacementChar = 0xFFFD;
constexpr UTF32 maxLegalUTF32 = 0x10FFFF;
constexpr UTF32 surrogateHighStart = 0xD800;
constexpr UTF32 surrogateLowEnd = 0xDFFF;
constexpr UTF8 firstByteMark[5] = {0x00, 0x00, 0xC0, 0xE0, 0xF0};

int bytesFor(UTF32 ch) {
    if (ch < 0x80) {
        return 1;
    }
    if (ch < 0x800) {
        return 2;
    }
    if (ch < 0x10000) {
        return 3;
    }
    return 4;
}

// Writes ch as `length` bytes at target, last byte first, as the encoding is built from
// the low bits up.
void writeBytes(UTF8* target, UTF32 ch, int length) {
    for (int i = length - 1; i > 0; --i) {
        target[i] = static_cast<UTF8>((ch | 0x80) & 0xBF);
        ch >>= 6;
    }
    target[0] = static_cast<UTF8>(ch | firstByteMark[length]);
}

} // namespace

ConversionResult ConvertUTF32toUTF8(const UTF32** sourceStart, const UTF32* sourceEnd,
                                    UTF8** targetStart, UTF8* targetEnd, ConversionFlags flags) {
    ConversionResult result = conversionOK;
    const UTF32* source = *sourceStart;
    UTF8* target = *targetStart;
    while (source < sourceEnd) {
        UTF32 ch = *source;
        if (flags == strictConversion && ch >= surrogateHighStart && ch <= surrogateLowEnd) {
            result = sourceIllegal;
            break;
        }
        if (ch > maxLegalUTF32) {
            ch = replacementChar;
            result = sourceIllegal;
        }
        const int length = bytesFor(ch);
        if (targetEnd - target < length) {
            result = targetExhausted;
            break;
        }
        writeBytes(target, ch, length);
        target += length;
        ++source;
    }
    *sourceStart = source;
    *targetStart = target;
    return result;
}

} // namespace Tamrik::UTF
