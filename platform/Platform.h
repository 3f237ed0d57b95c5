#pragma once

#include "platform/AppEvents.h"
#include "platform/Clock.h"
#include "platform/Launchers.h"
#include "platform/NamedNotifications.h"
#include "platform/RunningApplications.h"
#include "platform/Status.h"

namespace Platform {

// The operating-system services the font-manager link uses. The plug-in installs the
// Linux implementations when it is loaded; tests install in-memory fakes. The pointers
// are not owned.
struct Services {
    AppEvents* appEvents = nullptr;
    NamedNotifications* notifications = nullptr;
    RunningApplications* runningApplications = nullptr;
    Launchers* launchers = nullptr;
    Clock* clock = nullptr;
};

// The installed services. Every pointer is non-null once install() ran.
const Services& services();
void install(const Services& services);

} // namespace Platform
