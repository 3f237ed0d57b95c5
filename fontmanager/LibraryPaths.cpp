#include "fontmanager/LibraryPaths.h"

#include <cstdlib>
#include <stdexcept>

namespace Vellumine {

std::filesystem::path LibraryPaths::catalogFile() const {
    return dataHome / "vellumine" / "library.db";
}

std::filesystem::path LibraryPaths::activationFolder() const {
    return dataHome / "fonts" / "vellumine";
}

std::filesystem::path LibraryPaths::applicationsFolder() const {
    return dataHome / "applications";
}

LibraryPaths LibraryPaths::fromEnvironment() {
    // The XDG base directory rules ignore relative values.
    const char* xdg = std::getenv("XDG_DATA_HOME");
    if (xdg != nullptr && std::filesystem::path(xdg).is_absolute()) {
        return LibraryPaths{xdg};
    }
    const char* home = std::getenv("HOME");
    if (home != nullptr && std::filesystem::path(home).is_absolute()) {
        return LibraryPaths{std::filesystem::path(home) / ".local" / "share"};
    }
    throw std::runtime_error("neither XDG_DATA_HOME nor HOME names an absolute folder");
}

} // namespace Vellumine
