#pragma once

#include <string>
#include <vector>

namespace Platform {

// An installed application found by its bundle identifier.
struct Launcher {
    std::string identifier;
    std::string path;              // where the launcher was found
    std::vector<std::string> argv; // the command that starts it
};

class Launchers {
public:
    virtual ~Launchers() = default;
    // Status::notFound when no launcher with this identifier is installed.
    virtual int find(const std::string& identifier, Launcher& launcher) = 0;
    // Starts the launcher detached, in the background; the caller stays in front.
    virtual int launchInBackground(const Launcher& launcher) = 0;
};

} // namespace Platform
