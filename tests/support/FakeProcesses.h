#pragma once

#include "platform/Launchers.h"
#include "platform/RunningApplications.h"
#include "platform/Status.h"

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace VLMTest {

// The running-application list in memory.
class FakeRunningApplications : public Platform::RunningApplications {
public:
    int list(std::vector<Platform::RunningApplication>& applications) override {
        ++calls;
        applications = running;
        return Platform::Status::ok;
    }

    void add(const std::string& signature, const std::string& name, pid_t processID) {
        running.push_back({signature, name, processID});
    }
    int listCalls() const { return calls; }

private:
    std::vector<Platform::RunningApplication> running;
    int calls = 0;
};

// Installed launchers in memory; every lookup and launch is recorded in order.
class FakeLaunchers : public Platform::Launchers {
public:
    int find(const std::string& identifier, Platform::Launcher& launcher) override {
        found.push_back(identifier);
        auto match = installed.find(identifier);
        if (match == installed.end()) {
            return Platform::Status::notFound;
        }
        launcher = match->second;
        return Platform::Status::ok;
    }
    int launchInBackground(const Platform::Launcher& launcher) override {
        launched.push_back(launcher.identifier);
        if (launchStatus == Platform::Status::ok && launchAction) {
            launchAction(launcher);
        }
        return launchStatus;
    }

    void installLauncher(const std::string& identifier, const std::string& path) {
        installed[identifier] = {identifier, path, {path}};
    }
    void failLaunches(int status) { launchStatus = status; }
    // Runs on each successful launch, e.g. to make the started application appear.
    void onLaunch(std::function<void(const Platform::Launcher&)> action) {
        launchAction = std::move(action);
    }

    const std::vector<std::string>& lookups() const { return found; }
    const std::vector<std::string>& launches() const { return launched; }

private:
    std::map<std::string, Platform::Launcher> installed;
    std::vector<std::string> found;
    std::vector<std::string> launched;
    int launchStatus = Platform::Status::ok;
    std::function<void(const Platform::Launcher&)> launchAction;
};

} // namespace VLMTest
