#include "platform/linux/BusRunningApplications.h"

#include "platform/Status.h"
#include "platform/linux/BusResources.h"
#include "platform/linux/DBusAppEvents.h"
#include "platform/linux/SignatureTable.h"

#include <thread>

namespace Platform::Linux {

namespace {

// The pid of the owner of `name`: 0 when the name has no owner, negative on bus failure.
long ownerProcessID(sd_bus* bus, const std::string& name) {
    BusError error;
    sd_bus_message* raw = nullptr;
    int r = sd_bus_call_method(bus, "org.freedesktop.DBus", "/org/freedesktop/DBus",
                               "org.freedesktop.DBus", "GetConnectionUnixProcessID", error.get(),
                               &raw, "s", name.c_str());
    MessagePtr reply(raw);
    if (r < 0) {
        return error.hasName(SD_BUS_ERROR_NAME_HAS_NO_OWNER) ? 0 : -1;
    }
    std::uint32_t pid = 0;
    if (sd_bus_message_read(raw, "u", &pid) < 0) {
        return -1;
    }
    return static_cast<long>(pid);
}

} // namespace

void BusRunningApplications::waitForPollInterval() {
    const auto next = lastAsked_ + pollInterval;
    if (!answerChanged_ && std::chrono::steady_clock::now() < next) {
        std::this_thread::sleep_until(next);
    }
    lastAsked_ = std::chrono::steady_clock::now();
}

int BusRunningApplications::list(std::vector<RunningApplication>& applications) {
    applications.clear();
    waitForPollInterval();
    std::vector<RunningApplication> found;
    for (const auto& entry : signatureTable()) {
        long pid = ownerProcessID(events_.bus(), entry.busName);
        if (pid < 0) {
            return Status::transportError;
        }
        if (pid > 0) {
            found.push_back({entry.signature, entry.busName, static_cast<pid_t>(pid)});
        }
    }
    std::vector<std::string> answer;
    for (const auto& application : found) {
        answer.push_back(application.name);
    }
    answerChanged_ = answer != lastAnswer_;
    lastAnswer_ = std::move(answer);
    applications = std::move(found);
    return Status::ok;
}

} // namespace Platform::Linux
