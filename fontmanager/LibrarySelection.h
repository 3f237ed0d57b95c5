#pragma once

#include "fontmanager/LibraryLocation.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace Vellumine {

// Which library this process works on. The first of these that is set decides:
//   1. the environment variable VELLUMINE_LIBRARY,
//   2. the global option `--library URL`,
//   3. `library = URL` in $XDG_CONFIG_HOME/vellumine/vellumine.conf (~/.config/…),
//   4. the user's own SQLite file, $XDG_DATA_HOME/vellumine/library.db.
// The environment comes first so that a program started for a session (the window a
// server opens, a test's private world) stays on that session's library.
struct LibrarySources {
    std::optional<std::string> environment;
    std::optional<std::string> option;
    std::filesystem::path configFile; // may not exist
    std::filesystem::path defaultFile;
};

// Throws std::invalid_argument naming the source of a URL that is not a library URL, and
// std::runtime_error when the configuration file cannot be read.
LibraryLocation selectLibrary(const LibrarySources& sources);

// The `library = URL` line of a configuration file; nothing when the file or line is absent.
// Blank lines and lines starting with '#' are skipped; other keys are left for others.
std::optional<std::string> configuredLibrary(const std::filesystem::path& configFile);

// $XDG_CONFIG_HOME/vellumine/vellumine.conf, else ~/.config/vellumine/vellumine.conf.
std::filesystem::path defaultConfigFile();

// The process's library: set once from the command line (setLibraryOption), then read by
// every part that opens the catalog (commands, server, window).
void setLibraryOption(std::optional<std::string> url);
// {"--library", URL} when the option chose the library, for the programs this one starts.
std::vector<std::string> libraryArguments();
LibraryLocation currentLibrary();

} // namespace Vellumine
