#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace Vellumine {

// A container identifier from a request or the command line: plain decimal digits of a
// positive number (no sign, no blanks, at most 18 digits); anything else is no identifier.
std::optional<std::int64_t> parseContainerID(const std::string& text);

} // namespace Vellumine
