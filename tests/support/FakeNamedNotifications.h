#pragma once

#include "platform/NamedNotifications.h"

#include <condition_variable>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>

namespace VLMTest {

// Named notifications in memory, with the semantics of the real service: one counter per
// name, a registration reports a change when the counter moved since its last check, and
// the first check always reports one. Safe to use from a polling thread; tests can hold
// the checks back and wait for a number of completed checks to order their posts against
// the poller without sleeping.
class FakeNamedNotifications : public Platform::NamedNotifications {
public:
    int post(const std::string& name) override;
    int registerCheck(const std::string& name, int& token) override;
    int check(int token, int& check) override;
    int cancel(int token) override;

    void failRegistrations(bool fail);
    // While held, check() blocks until released.
    void holdChecks();
    void releaseChecks();
    // Completed checks of a registration so far.
    std::uint64_t checksDone(int token) const;
    // Blocks until the registration has completed `count` checks; false after 5 seconds.
    bool waitForChecks(int token, std::uint64_t count) const;
    int tokenOf(const std::string& name) const; // the newest registration, -1 when none

private:
    struct Registration {
        std::string name;
        std::uint64_t lastSeen = 0;
        bool checkedOnce = false;
        std::uint64_t checks = 0;
    };

    mutable std::mutex lock;
    mutable std::condition_variable changed;
    std::map<std::string, std::uint64_t> counters;
    std::map<int, Registration> registrations;
    int nextToken = 1;
    bool failing = false;
    bool held = false;
};

} // namespace VLMTest
