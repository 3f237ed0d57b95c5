#pragma once

#include "link/BasicVLMNotifyHandler.h"
#include "link/NotificationDaemon.h"

#include "platform/AppEvents.h"

#include <memory>

namespace VLM {

// The transport to the font manager over the platform's application events, and the
// receiver of its news: its "VLM4" events and its library-changed notification.
class MacVLMNotifyHandler : public BasicVLMNotifyHandler {
public:
    // Attempts of one exchange, and the wait after each failed one (half a second).
    static constexpr int maxSendAttempts = 20;
    static constexpr unsigned int retryDelayTicks = 30;

    MacVLMNotifyHandler() = default;
    // Takes its event handler out if end() did not, so no event reaches a dead object.
    ~MacVLMNotifyHandler() override;
    MacVLMNotifyHandler(const MacVLMNotifyHandler&) = delete;
    MacVLMNotifyHandler& operator=(const MacVLMNotifyHandler&) = delete;

    void start() override;
    void end() override;
    void push() override;
    std::string SendToVlm(const std::string& message) override;
    void WaitForLaunch() override {}

    // The installed event handler: a "FSBC" or "FFSC" event of the font manager is
    // broadcast as a font change to the listeners of the handler given as refcon.
    static int HandleEvent(const Platform::AppEvent& event, std::string& reply, void* refcon);

    bool isWatchingLibrary() const { return daemon != nullptr; }

private:
    void removeEventHandler();

    // Set while the event handler is installed.
    Platform::AppEventHandlerProc handlerUPP = nullptr;
    std::unique_ptr<BSDNotification::Daemon> daemon;
};

} // namespace VLM
