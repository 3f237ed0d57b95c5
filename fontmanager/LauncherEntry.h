#pragma once

#include <filesystem>
#include <string>

namespace Vellumine {

// The launcher that the plug-in looks for: org.vellumine.Vellumine.Launcher3.desktop.
inline const std::string launcherIdentifier = "org.vellumine.Vellumine.Launcher3";

// The desktop entry that starts `EXECUTABLE serve`, the path quoted as desktop entries
// want it.
std::string launcherEntryText(const std::filesystem::path& executable);

// Writes the entry into DATA_HOME/applications/; returns the file written. Throws
// std::filesystem::filesystem_error when it cannot.
std::filesystem::path installLauncher(const std::filesystem::path& dataHome,
                                      const std::filesystem::path& executable);

// This program's own path (/proc/self/exe).
std::filesystem::path ownExecutable();

} // namespace Vellumine
