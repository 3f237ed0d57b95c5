#pragma once

#include <cstdint>

namespace Tamrik::UTF {

using UTF32 = std::uint32_t;
using UTF8 = std::uint8_t;

enum ConversionResult {
    conversionOK = 0,
    sourceExhausted = 1,
    targetExhausted = 2,
    sourceIllegal = 3
};
enum ConversionFlags { strictConversion = 0, lenientConversion = 1 };

// UTF-32 to UTF-8. Both pointers are advanced past what was converted and written back
// at the end; on targetExhausted they stay at the code point that did not fit.
ConversionResult ConvertUTF32toUTF8(const UTF32** sourceStart, const UTF32* sourceEnd,
                                    UTF8** targetStart, UTF8* targetEnd, ConversionFlags flags);

} // namespace Tamrik::UTF
