#pragma once

#include <optional>
#include <stdexcept>
#include <string>

namespace Galley {

// A document that cannot be read or written. The message names the package file and the
// part inside it, so that the user can tell which file is at fault.
class IdmlError : public std::runtime_error {
public:
    IdmlError(std::string file, std::string part, std::string detail)
        : std::runtime_error(file + ": " + (part.empty() ? std::string() : part + ": ") + detail),
          file_(std::move(file)), part_(std::move(part)), detail_(std::move(detail)) {}

    const std::string& file() const { return file_; }
    const std::string& part() const { return part_; }
    const std::string& detail() const { return detail_; }

private:
    std::string file_;
    std::string part_;
    std::string detail_;
};

// Font and style names are short; one of megabytes, inherited by every style and run below
// it, would multiply into gigabytes.
inline constexpr std::size_t kMaxNameBytes = 256;

// Throws IdmlError naming `file` and `part` when `name` is longer than kMaxNameBytes.
inline void checkNameLength(const std::string& file, const std::string& part,
                            const std::optional<std::string>& name) {
    if (name && name->size() > kMaxNameBytes)
        throw IdmlError(file, part,
                        "a font or style name is longer than " + std::to_string(kMaxNameBytes) +
                            " bytes");
}

} // namespace Galley
