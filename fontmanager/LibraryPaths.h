#pragma once

#include <filesystem>

namespace Vellumine {

// Where vellumine keeps its state, all below the user's XDG data folder
// ($XDG_DATA_HOME, else ~/.local/share).
struct LibraryPaths {
    std::filesystem::path dataHome;
    // $XDG_CACHE_HOME, else ~/.cache; empty when neither names an absolute folder.
    std::filesystem::path cacheHome;

    // $XDG_DATA_HOME/vellumine/library.db
    std::filesystem::path catalogFile() const;
    // $XDG_DATA_HOME/fonts/vellumine/, a folder fontconfig scans by default.
    std::filesystem::path activationFolder() const;
    // $XDG_DATA_HOME/applications/
    std::filesystem::path applicationsFolder() const;
    // $XDG_CACHE_HOME/vellumine/system-fonts: the system's fonts as last read, for the next
    // start. Empty without a cache folder.
    std::filesystem::path systemFontsFile() const;

    // From the environment; throws std::runtime_error when neither XDG_DATA_HOME nor HOME
    // names an absolute folder.
    static LibraryPaths fromEnvironment();
    // The XDG base folder `variable` names, else `underHome` below $HOME; empty when neither
    // is an absolute folder (the XDG rules ignore relative values).
    static std::filesystem::path xdgFolder(const char* variable,
                                           const std::filesystem::path& underHome);
};

} // namespace Vellumine
