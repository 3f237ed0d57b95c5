#pragma once

#include "platform/Launchers.h"

#include <string>
#include <vector>

namespace Platform::Linux {

// Launchers found as desktop entries: `<identifier>.desktop` in $XDG_DATA_HOME/applications
// (default ~/.local/share), then in each $XDG_DATA_DIRS entry's applications/ (default
// /usr/local/share:/usr/share). The first file found is the entry for that identifier: when
// it is hidden, not an application, its TryExec program is missing or its Exec line is
// malformed, the identifier counts as not installed (Status::notFound; lastError() says
// why). Launching starts the Exec command detached (see BackgroundLaunch.h).
class DesktopEntryLaunchers : public Platform::Launchers {
public:
    int find(const std::string& identifier, Launcher& launcher) override;
    int launchInBackground(const Launcher& launcher) override;

    // Why the last find or launch failed; empty after a success.
    const std::string& lastError() const { return lastError_; }

    // The applications/ folders searched, in order, from the current environment.
    static std::vector<std::string> applicationFolders();

private:
    int readEntry(const std::string& identifier, const std::string& path, Launcher& launcher);

    std::string lastError_;
};

} // namespace Platform::Linux
