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

std::filesystem::path LibraryPaths::systemFontsFile() const {
    return cacheHome.empty() ? std::filesystem::path() : cacheHome / "vellumine" / "system-fonts";
}

std::filesystem::path LibraryPaths::xdgFolder(const char* variable,
                                              const std::filesystem::path& underHome) {
    const char* xdg = std::getenv(variable);
    if (xdg != nullptr && std::filesystem::path(xdg).is_absolute()) {
        return xdg;
    }
    const char* home = std::getenv("HOME");
    if (home != nullptr && std::filesystem::path(home).is_absolute()) {
        return std::filesystem::path(home) / underHome;
    }
    return {};
}

LibraryPaths LibraryPaths::fromEnvironment() {
    LibraryPaths paths{xdgFolder("XDG_DATA_HOME", ".local/share"),
                       xdgFolder("XDG_CACHE_HOME", ".cache")};
    if (paths.dataHome.empty()) {
        throw std::runtime_error("neither XDG_DATA_HOME nor HOME names an absolute folder");
    }
    return paths;
}

} // namespace Vellumine
