#pragma once

#include "support/FakeAppEvents.h"
#include "support/FakeClock.h"
#include "support/FakeNamedNotifications.h"
#include "support/FakeProcesses.h"

#include "platform/Platform.h"

namespace VLMTest {

// Every platform service as an in-memory fake, installed into Platform::services() for
// the lifetime of this object; the services installed before are restored afterwards.
// Meant as a test fixture member, so that each test starts from fresh fakes.
class FakePlatform {
public:
    FakePlatform() {
        Platform::install({&appEvents, &notifications, &runningApplications, &launchers, &clock});
    }
    ~FakePlatform() { Platform::install(previous); }
    FakePlatform(const FakePlatform&) = delete;
    FakePlatform& operator=(const FakePlatform&) = delete;

    FakeAppEvents appEvents;
    FakeNamedNotifications notifications;
    FakeRunningApplications runningApplications;
    FakeLaunchers launchers;
    FakeClock clock;

private:
    Platform::Services previous = Platform::services();
};

} // namespace VLMTest
