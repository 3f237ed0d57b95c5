#pragma once

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

} // namespace Galley
