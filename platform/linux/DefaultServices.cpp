#include "platform/linux/DefaultServices.h"

#include "platform/linux/BusRunningApplications.h"
#include "platform/linux/DBusAppEvents.h"
#include "platform/linux/DesktopEntryLaunchers.h"
#include "platform/linux/FileNotifications.h"
#include "platform/linux/RealClock.h"

namespace Platform::Linux {

namespace {

// App events of a process without a session bus: nobody can be reached.
class UnreachableAppEvents : public AppEvents {
public:
    int send(const std::string&, const AppEvent&, std::string& reply) override {
        reply.clear();
        return Status::notRunning;
    }
    int installHandler(const std::string&, const std::string&, AppEventHandlerProc,
                       void*) override {
        return Status::ok;
    }
    int removeHandler(const std::string&, const std::string&, AppEventHandlerProc) override {
        return Status::ok;
    }
};

class NoRunningApplications : public RunningApplications {
public:
    int list(std::vector<RunningApplication>& applications) override {
        applications.clear();
        return Status::ok;
    }
};

} // namespace

std::unique_ptr<DefaultServices> DefaultServices::install(const std::string& ownName, int& status) {
    std::unique_ptr<DefaultServices> created(new DefaultServices);
    created->bus_ = DBusAppEvents::open(ownName, status);
    if (created->bus_) {
        created->runningApplications_ = std::make_unique<BusRunningApplications>(*created->bus_);
        created->services_.appEvents = created->bus_.get();
    } else {
        created->appEvents_ = std::make_unique<UnreachableAppEvents>();
        created->runningApplications_ = std::make_unique<NoRunningApplications>();
        created->services_.appEvents = created->appEvents_.get();
    }
    created->notifications_ = std::make_unique<FileNotifications>();
    created->launchers_ = std::make_unique<DesktopEntryLaunchers>();
    created->clock_ = std::make_unique<RealClock>();
    created->services_.notifications = created->notifications_.get();
    created->services_.runningApplications = created->runningApplications_.get();
    created->services_.launchers = created->launchers_.get();
    created->services_.clock = created->clock_.get();
    Platform::install(created->services_);
    return created;
}

DefaultServices::~DefaultServices() {
    if (Platform::services().appEvents == services_.appEvents) {
        Platform::install(Services{});
    }
}

} // namespace Platform::Linux
