#pragma once

#include "platform/Launchers.h"
#include "platform/RunningApplications.h"

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace VLMTest {

// The running-application list in memory.
class FakeRunningApplications : public Platform::RunningApplications {
public:
    int list(std::vector<Platform::RunningApplication>& applications) override;

    void add(const std::string& signature, const std::string& name, pid_t processID);
    void remove(const std::string& signature);
    void failListing(int status) { listStatus = status; }
    int listCalls() const { return calls; }
    void reset();

private:
    std::vector<Platform::RunningApplication> running;
    int listStatus = 0;
    int calls = 0;
};

// Installed launchers in memory; every lookup and launch is recorded in order.
class FakeLaunchers : public Platform::Launchers {
public:
    int find(const std::string& identifier, Platform::Launcher& launcher) override;
    int launchInBackground(const Platform::Launcher& launcher) override;

    void installLauncher(const std::string& identifier, const std::string& path);
    void failLaunches(int status) { launchStatus = status; }
    // Runs on each successful launch, e.g. to make the started application appear.
    void onLaunch(std::function<void(const Platform::Launcher&)> action) {
        launchAction = std::move(action);
    }

    const std::vector<std::string>& lookups() const { return found; }
    const std::vector<std::string>& launches() const { return launched; }
    void reset();

private:
    std::map<std::string, Platform::Launcher> installed;
    std::vector<std::string> found;
    std::vector<std::string> launched;
    int launchStatus = 0;
    std::function<void(const Platform::Launcher&)> launchAction;
};

} // namespace VLMTest
