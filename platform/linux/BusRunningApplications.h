#pragma once

#include "platform/RunningApplications.h"

#include <chrono>
#include <string>
#include <vector>

namespace Platform::Linux {

class DBusAppEvents;

// The applications of the signature table whose bus names have an owner, in table order,
// each with the owner's process ID (GetConnectionUnixProcessID). Uses the connection of
// `events`, which must outlive this object; called on that connection's thread.
//
// A caller that polls (the plug-in waits this way for a font manager it has just launched)
// asks the bus at most once per `pollInterval` while the answer stays the same: back to
// back, the calls kept the bus daemon and this process busy on both cores of a small machine
// while the launched program needed one of them to start. A call right after the answer
// changed is not held back, so a caller that asks once more after its wait pays nothing.
class BusRunningApplications : public Platform::RunningApplications {
public:
    static constexpr std::chrono::microseconds pollInterval{2000};

    explicit BusRunningApplications(DBusAppEvents& events) : events_(events) {}
    // Status::transportError when the bus cannot be asked; the list is then empty.
    int list(std::vector<RunningApplication>& applications) override;

private:
    void waitForPollInterval();

    DBusAppEvents& events_;
    std::chrono::steady_clock::time_point lastAsked_{};
    std::vector<std::string> lastAnswer_;
    bool answerChanged_ = true;
};

} // namespace Platform::Linux
