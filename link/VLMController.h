#pragma once

#include "platform/RunningApplications.h"

#include <string>

namespace VLM {

// Finding, starting and judging the font manager. No state of its own; every system error
// comes back as its status code and nothing is thrown.
class VLMController {
public:
    // Seconds a launch waits for the font manager's process to appear.
    static constexpr unsigned int launchWaitSeconds = 15;

    // Walks the running applications; found tells whether the font manager was among
    // them and process then describes it. 0 when found, else the error that ended the walk.
    static int FindVellumineProcess(Platform::RunningApplication& process, bool& found);
    static int CheckRunningVersion();
    // Starts the launcher with this identifier in the background unless the font manager
    // runs already, then waits for its process.
    static int LaunchVellumine(const std::string& bundleID);
    // Tries the launchers from the newest to the oldest.
    static int LaunchVellumine();

    // The first two dot-separated numbers; with one number, minor is left as given.
    static bool separateVersion(const std::string& text, unsigned long& major,
                                unsigned long& minor);
    // Major and minor are compared one by one, not as a pair: 3.0 does not satisfy 2.5.
    static bool checkForNeededProtocolVersion(const std::string& text, unsigned long neededMajor,
                                              unsigned long neededMinor);
};

} // namespace VLM
