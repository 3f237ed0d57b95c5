#include "foundation/SystemError.h"

#include <cstring>

namespace Tamrik {

std::string describeSystemError(int error) {
    char buffer[256];
    // GNU strerror_r returns the text, which need not be in the buffer.
    const char* text = strerror_r(error, buffer, sizeof buffer);
    return std::to_string(error) + ": " + text;
}

} // namespace Tamrik
