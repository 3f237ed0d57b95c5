#include "link/VLMController.h"

#include "foundation/Logger.h"
#include "foundation/NumberText.h"
#include "foundation/Tokenize.h"
#include "link/ProtocolConstants.h"
#include "platform/Platform.h"

#include <vector>

namespace VLM {

namespace {

const char* const launcherSuffixes[] = {".Launcher3", ".Launcher2", ".Launcher"};

bool isVellumineRunning() {
    Platform::RunningApplication process;
    bool found = false;
    VLMController::FindVellumineProcess(process, found);
    return found;
}

void waitForVellumineProcess() {
    Platform::Clock& clock = *Platform::services().clock;
    const std::uint32_t startedAt = clock.dateTimeSeconds();
    bool found = false;
    do {
        found = isVellumineRunning();
    } while (!found && clock.dateTimeSeconds() - startedAt < VLMController::launchWaitSeconds);
}

} // namespace

int VLMController::FindVellumineProcess(Platform::RunningApplication& process, bool& found) {
    found = false;
    Platform::RunningApplications* running = Platform::services().runningApplications;
    if (running == nullptr) {
        return Platform::Status::notRunning;
    }
    std::vector<Platform::RunningApplication> applications;
    const int status = running->list(applications);
    for (const Platform::RunningApplication& application : applications) {
        if (application.signature == vellumineSignature) {
            process = application;
            found = true;
            return Platform::Status::ok;
        }
    }
    // Like a walk that ran past the last process: "no such process", unless listing failed.
    return status != Platform::Status::ok ? status : Platform::Status::notRunning;
}

int VLMController::CheckRunningVersion() {
    return 0;
}

int VLMController::LaunchVellumine(const std::string& bundleID) {
    if (isVellumineRunning()) {
        return Platform::Status::ok;
    }
    Platform::Launchers* launchers = Platform::services().launchers;
    if (launchers == nullptr) {
        return Platform::Status::notFound;
    }
    Platform::Launcher launcher;
    const int findStatus = launchers->find(bundleID, launcher);
    Logger::log("VLMController-LaunchVellumine", launcher.path);
    if (findStatus != Platform::Status::ok) {
        return findStatus;
    }
    const int launchStatus = launchers->launchInBackground(launcher);
    if (launchStatus != Platform::Status::ok) {
        return launchStatus;
    }
    // A process that does not appear in time is the caller's to notice: still success.
    waitForVellumineProcess();
    return Platform::Status::ok;
}

int VLMController::LaunchVellumine() {
    int status = Platform::Status::notFound;
    for (const char* suffix : launcherSuffixes) {
        status = LaunchVellumine(vellumineIdentifier + suffix);
        if (status == Platform::Status::ok) {
            return status;
        }
    }
    return status;
}

bool VLMController::separateVersion(const std::string& text, unsigned long& major,
                                    unsigned long& minor) {
    const std::vector<std::string> pieces = Tamrik::tokenize(text, ".", true);
    if (pieces.empty()) {
        return false;
    }
    bool ok = false;
    major = Tamrik::safeParse<unsigned long>(pieces[0], ok);
    if (!ok) {
        return false;
    }
    if (pieces.size() >= 2) {
        minor = Tamrik::safeParse<unsigned long>(pieces[1], ok);
        if (!ok) {
            return false;
        }
    }
    return true;
}

bool VLMController::checkForNeededProtocolVersion(const std::string& text,
                                                  unsigned long neededMajor,
                                                  unsigned long neededMinor) {
    unsigned long major = 0;
    unsigned long minor = 0;
    if (!separateVersion(text, major, minor)) {
        return false;
    }
    if (major < neededMajor) {
        return false;
    }
    return minor >= neededMinor;
}

} // namespace VLM
