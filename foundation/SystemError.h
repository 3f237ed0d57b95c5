#pragma once

#include <string>

namespace Tamrik {

// "<number>: <system text>", the tail of every "unexpected error" message.
std::string describeSystemError(int error);

} // namespace Tamrik
