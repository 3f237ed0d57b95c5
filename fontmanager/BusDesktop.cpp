#include "fontmanager/BusDesktop.h"

#include "fontmanager/LibrarySelection.h"
#include "fontmanager/WindowBus.h"
#include "foundation/Logger.h"
#include "platform/linux/BackgroundLaunch.h"
#include "platform/linux/DBusAppEvents.h"
#include "platform/linux/SignatureTable.h"

#include <cstdlib>
#include <systemd/sd-bus.h>

namespace Vellumine {

namespace {

const std::string logTag = "vellumine-desktop";

bool isSet(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr && *value != '\0';
}

// How long a notification stays, in milliseconds.
constexpr std::int32_t notificationTimeout = 8000;

void logOwnerWatchFailed() {
    Logger::log(logTag, "cannot watch applications leave the bus; fonts activated for them "
                        "stay active");
}

} // namespace

struct BusDesktopCallbacks {
    static int onNameOwnerChanged(sd_bus_message* message, void* userdata, sd_bus_error* error);
    static int onOwnerWatchInstalled(sd_bus_message* reply, void* userdata, sd_bus_error* error);
    static int onNotified(sd_bus_message* reply, void* userdata, sd_bus_error* error);
};

std::string applicationDisplayName(const std::string& signature) {
    const auto busName = Platform::Linux::busNameForSignature(signature);
    if (!busName) {
        return signature;
    }
    return busName->substr(busName->rfind('.') + 1);
}

BusDesktop::BusDesktop(Platform::Linux::DBusAppEvents& events, TemporaryActivation& temporary,
                       std::filesystem::path executable)
    : events(events), temporary(temporary), executable(std::move(executable)) {
    // Not waited for, which saves the server's start a round trip: the bus daemon handles
    // our messages in order, so the watch is in place before any application gets the reply
    // that makes it a requester whose leaving counts.
    const int r = sd_bus_match_signal_async(
        events.bus(), &ownerWatch, "org.freedesktop.DBus", "/org/freedesktop/DBus",
        "org.freedesktop.DBus", "NameOwnerChanged", BusDesktopCallbacks::onNameOwnerChanged,
        BusDesktopCallbacks::onOwnerWatchInstalled, this);
    if (r < 0) {
        logOwnerWatchFailed();
    }
}

BusDesktop::~BusDesktop() {
    sd_bus_slot_unref(ownerWatch);
}

int BusDesktopCallbacks::onNameOwnerChanged(sd_bus_message* message, void* userdata,
                                            sd_bus_error*) {
    auto* self = static_cast<BusDesktop*>(userdata);
    const char* name = nullptr;
    const char* oldOwner = nullptr;
    const char* newOwner = nullptr;
    if (sd_bus_message_read(message, "sss", &name, &oldOwner, &newOwner) < 0) {
        return 0;
    }
    const auto signature = Platform::Linux::signatureForBusName(name);
    if (signature && *newOwner == '\0') {
        Logger::log(logTag, std::string(name) + " left the bus");
        self->temporary.applicationLeft(*signature, TemporaryActivation::Clock::now());
    }
    return 0;
}

int BusDesktopCallbacks::onOwnerWatchInstalled(sd_bus_message* reply, void*, sd_bus_error*) {
    if (sd_bus_message_is_method_error(reply, nullptr)) {
        logOwnerWatchFailed();
    }
    return 0;
}

bool BusDesktop::isRunning(const std::string& signature) {
    const auto busName = Platform::Linux::busNameForSignature(signature);
    if (!busName) {
        return true;
    }
    return events.hasOwner(*busName);
}

bool BusDesktop::hasDisplay() {
    return isSet("WAYLAND_DISPLAY") || isSet("DISPLAY") || isSet("QT_QPA_PLATFORM");
}

void BusDesktop::launch(const std::vector<std::string>& argv) {
    std::string error;
    if (Platform::Linux::launchDetached(argv, error) != 0) {
        Logger::log(logTag, "cannot start " + argv.front() + " " + argv.at(1) + ": " + error);
    }
}

void BusDesktop::showFace(const std::string& containerID, const std::string& postScriptName) {
    if (events.hasOwner(windowBusName)) {
        const int r = sd_bus_call_method_async(events.bus(), nullptr, windowBusName.c_str(),
                                               windowObjectPath.c_str(), windowInterface.c_str(),
                                               "Show", nullptr, nullptr, "ss", containerID.c_str(),
                                               postScriptName.c_str());
        if (r >= 0) {
            return;
        }
        Logger::log(logTag, "the window did not take the show request; starting another");
    }
    std::vector<std::string> argv = {executable.string()};
    // The window opens the server's library, also when --library chose it.
    const std::vector<std::string> library = libraryArguments();
    argv.insert(argv.end(), library.begin(), library.end());
    argv.insert(argv.end(), {"window", "--show", postScriptName});
    if (!containerID.empty()) {
        argv.insert(argv.end(), {"--container", containerID});
    }
    launch(argv);
}

void BusDesktop::openUrl(const std::string& url) {
    launch({executable.string(), "open-url", url});
}

int BusDesktopCallbacks::onNotified(sd_bus_message* reply, void* userdata, sd_bus_error*) {
    auto* self = static_cast<BusDesktop*>(userdata);
    std::uint32_t id = 0;
    if (sd_bus_message_is_method_error(reply, nullptr) ||
        sd_bus_message_read(reply, "u", &id) < 0) {
        Logger::log(logTag, "no desktop notification (no notification service?)");
        return 0;
    }
    self->lastNotification = id;
    return 0;
}

void BusDesktop::announceAutomaticActivation(const std::string& application,
                                             const std::vector<std::string>& faces) {
    const std::string summary = "Fonts activated for " + applicationDisplayName(application);
    std::string body;
    for (const auto& face : faces) {
        body += (body.empty() ? "" : "\n") + face;
    }
    sd_bus_message* call = nullptr;
    int r = sd_bus_message_new_method_call(events.bus(), &call, "org.freedesktop.Notifications",
                                           "/org/freedesktop/Notifications",
                                           "org.freedesktop.Notifications", "Notify");
    if (r >= 0) {
        // Replaces the previous notification: one per request, never a pile of them.
        r = sd_bus_message_append(call, "susssasa{sv}i", "vellumine", lastNotification,
                                  "font-x-generic", summary.c_str(), body.c_str(), 0, 0,
                                  notificationTimeout);
    }
    if (r >= 0) {
        r = sd_bus_call_async(events.bus(), nullptr, call, BusDesktopCallbacks::onNotified, this,
                              0);
    }
    sd_bus_message_unref(call);
    if (r < 0) {
        Logger::log(logTag, "cannot send a desktop notification");
    }
}

void BusDesktop::requesterRecorded(const std::string& application) {
    // An application that owns no name never leaves the bus in a way we could see.
    if (!isRunning(application)) {
        temporary.applicationLeft(application, TemporaryActivation::Clock::now());
    }
}

} // namespace Vellumine
