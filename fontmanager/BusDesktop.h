#pragma once

#include "fontmanager/Desktop.h"
#include "fontmanager/TemporaryActivation.h"

#include <cstdint>
#include <filesystem>
#include <string>

typedef struct sd_bus_slot sd_bus_slot;

namespace Platform::Linux {
class DBusAppEvents;
}

namespace Vellumine {

// The server's desktop side, over its session-bus connection:
//  - show: calls Show on the window's bus name (WindowBus.h), or starts
//    `vellumine window --show PSNAME [--container ID]` detached when no window runs;
//  - buy: starts `vellumine open-url URL` detached, a short Qt program that hands the address
//    to QDesktopServices (xdg-open, $BROWSER), since the server itself has no Qt;
//  - notifications: org.freedesktop.Notifications.Notify, each replacing the previous one;
//  - temporary activation: watches NameOwnerChanged for the applications of the signature
//    table and tells TemporaryActivation when one leaves.
// Nothing here waits for an answer: calls go out asynchronously, so that a slow
// notification daemon or window never holds up a font request.
class BusDesktop : public Desktop {
public:
    BusDesktop(Platform::Linux::DBusAppEvents& events, TemporaryActivation& temporary,
               std::filesystem::path executable);
    ~BusDesktop() override;
    BusDesktop(const BusDesktop&) = delete;
    BusDesktop& operator=(const BusDesktop&) = delete;

    // A display: $WAYLAND_DISPLAY or $DISPLAY, or a Qt platform chosen in $QT_QPA_PLATFORM
    // (offscreen, for instance).
    bool hasDisplay() override;
    void showFace(const std::string& containerID, const std::string& postScriptName) override;
    void openUrl(const std::string& url) override;
    void announceAutomaticActivation(const std::string& application,
                                     const std::vector<std::string>& faces) override;
    void requesterRecorded(const std::string& application) override;

    // Whether the application with this signature runs (its bus name has an owner); an
    // application outside the signature table cannot be watched and counts as running.
    bool isRunning(const std::string& signature);

private:
    friend struct BusDesktopCallbacks;
    void launch(const std::vector<std::string>& argv);

    Platform::Linux::DBusAppEvents& events;
    TemporaryActivation& temporary;
    std::filesystem::path executable;
    sd_bus_slot* ownerWatch = nullptr;
    std::uint32_t lastNotification = 0;
};

// "Galley" for InDn: the last part of the application's bus name, else the signature.
std::string applicationDisplayName(const std::string& signature);

} // namespace Vellumine
