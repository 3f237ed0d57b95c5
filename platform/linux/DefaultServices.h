#pragma once

#include "platform/Platform.h"

#include <memory>
#include <string>

namespace Platform::Linux {

class DBusAppEvents;

// The Linux services of one process, created together and installed with
// Platform::install. The returned object owns them all; keep it alive for as long as the
// plug-in may use Platform::services() (the host holds it while the plug-in is loaded) and
// destroy it on the thread that runs the bus dispatch. Destroying it uninstalls the
// services again when they are still the installed ones.
//
// When no session bus can be reached the other services still work: app events then
// fail every send with Status::notRunning and no application counts as running, so the
// plug-in behaves as if the font manager were absent. `status` tells what happened:
// Status::ok, Status::permissionDenied (ownName is taken by another process) or
// Status::transportError (no bus); the services are installed in every case.
class DefaultServices {
public:
    static std::unique_ptr<DefaultServices> install(const std::string& ownName, int& status);
    ~DefaultServices();
    DefaultServices(const DefaultServices&) = delete;
    DefaultServices& operator=(const DefaultServices&) = delete;

    const Services& services() const { return services_; }
    // The bus connection for the owner's event loop (fd, events, processPending); null
    // when the bus was not reached.
    DBusAppEvents* bus() const { return bus_.get(); }

private:
    DefaultServices() = default;

    std::unique_ptr<DBusAppEvents> bus_;
    std::unique_ptr<AppEvents> appEvents_; // stand-in when bus_ is null
    std::unique_ptr<NamedNotifications> notifications_;
    std::unique_ptr<RunningApplications> runningApplications_;
    std::unique_ptr<Launchers> launchers_;
    std::unique_ptr<Clock> clock_;
    Services services_;
};

} // namespace Platform::Linux
