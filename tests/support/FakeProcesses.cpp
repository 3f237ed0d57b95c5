#include "support/FakeProcesses.h"

#include "platform/Status.h"

#include <algorithm>

namespace VLMTest {

int FakeRunningApplications::list(std::vector<Platform::RunningApplication>& applications) {
    ++calls;
    applications = running;
    return listStatus;
}

void FakeRunningApplications::add(const std::string& signature, const std::string& name,
                                  pid_t processID) {
    running.push_back({signature, name, processID});
}

void FakeRunningApplications::remove(const std::string& signature) {
    std::erase_if(running,
                  [&](const auto& application) { return application.signature == signature; });
}

void FakeRunningApplications::reset() {
    running.clear();
    listStatus = Platform::Status::ok;
    calls = 0;
}

int FakeLaunchers::find(const std::string& identifier, Platform::Launcher& launcher) {
    found.push_back(identifier);
    auto match = installed.find(identifier);
    if (match == installed.end()) {
        return Platform::Status::notFound;
    }
    launcher = match->second;
    return Platform::Status::ok;
}

int FakeLaunchers::launchInBackground(const Platform::Launcher& launcher) {
    launched.push_back(launcher.identifier);
    if (launchStatus != Platform::Status::ok) {
        return launchStatus;
    }
    if (launchAction) {
        launchAction(launcher);
    }
    return Platform::Status::ok;
}

void FakeLaunchers::installLauncher(const std::string& identifier, const std::string& path) {
    installed[identifier] = {identifier, path, {path}};
}

void FakeLaunchers::reset() {
    installed.clear();
    found.clear();
    launched.clear();
    launchStatus = Platform::Status::ok;
    launchAction = nullptr;
}

} // namespace VLMTest
