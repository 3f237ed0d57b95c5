#pragma once

#include <filesystem>

namespace Vellumine {

// Where vellumine keeps its state, all below the user's XDG data folder
// ($XDG_DATA_HOME, else ~/.local/share).
struct LibraryPaths {
    std::filesystem::path dataHome;

    // $XDG_DATA_HOME/vellumine/library.db
    std::filesystem::path catalogFile() const;
    // $XDG_DATA_HOME/fonts/vellumine/, a folder fontconfig scans by default.
    std::filesystem::path activationFolder() const;
    // $XDG_DATA_HOME/applications/
    std::filesystem::path applicationsFolder() const;

    // From the environment; throws std::runtime_error when neither XDG_DATA_HOME nor HOME
    // names an absolute folder.
    static LibraryPaths fromEnvironment();
};

} // namespace Vellumine
