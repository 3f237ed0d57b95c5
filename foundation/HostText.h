#pragma once

#include "sdk/PMString.h"
#include "sdk/WideString.h"

#include <string>

namespace Helpers {

// How a conversion went; tests use it to see the buffer growth.
struct ConversionStats {
    int attempts = 0;                  // conversions run, the first one included
    unsigned long finalBufferSize = 0; // bytes of the buffer of the last attempt
};

// Host wide text to UTF-8. An unpaired surrogate gives the empty string.
std::string convertToUTF8(const WideString& wide, ConversionStats* stats = nullptr);
std::string toString(const PMString& text);

} // namespace Helpers
