#pragma once

#include "platform/RunningApplications.h"

namespace Platform::Linux {

class DBusAppEvents;

// The applications of the signature table whose bus names have an owner, in table order,
// each with the owner's process ID (GetConnectionUnixProcessID). Uses the connection of
// `events`, which must outlive this object; called on that connection's thread.
class BusRunningApplications : public Platform::RunningApplications {
public:
    explicit BusRunningApplications(DBusAppEvents& events) : events_(events) {}
    // Status::transportError when the bus cannot be asked; the list is then empty.
    int list(std::vector<RunningApplication>& applications) override;

private:
    DBusAppEvents& events_;
};

} // namespace Platform::Linux
