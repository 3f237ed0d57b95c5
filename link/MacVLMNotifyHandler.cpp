#include "link/MacVLMNotifyHandler.h"

#include "foundation/Logger.h"
#include "link/ProtocolConstants.h"
#include "link/ReplyText.h"
#include "platform/Platform.h"

namespace VLM {

MacVLMNotifyHandler::~MacVLMNotifyHandler() {
    if (handlerUPP != nullptr) {
        removeEventHandler();
    }
}

void MacVLMNotifyHandler::removeEventHandler() {
    if (Platform::AppEvents* events = Platform::services().appEvents) {
        events->removeHandler(targetClass, Platform::anyEventID, &MacVLMNotifyHandler::HandleEvent);
    }
    handlerUPP = nullptr;
}

void MacVLMNotifyHandler::start() {
    handlerUPP = &MacVLMNotifyHandler::HandleEvent;
    if (Platform::AppEvents* events = Platform::services().appEvents) {
        events->installHandler(targetClass, Platform::anyEventID, handlerUPP, this);
    }
    if (!daemon) {
        // Kept only once it watches: a failed registration raises and a later start()
        // tries again.
        auto watcher = std::make_unique<BSDNotification::Daemon>();
        watcher->addListener(libraryChangedNotification);
        daemon = std::move(watcher);
    }
}

void MacVLMNotifyHandler::end() {
    removeEventHandler();
    daemon.reset();
}

void MacVLMNotifyHandler::push() {
    if (daemon && daemon->hasFired("")) {
        notifiyAll(fontChangedCommand);
    }
}

int MacVLMNotifyHandler::HandleEvent(const Platform::AppEvent& event, std::string& /*reply*/,
                                     void* refcon) {
    if (event.eventID != fontSetChangedEventID && event.eventID != fontFileSetChangedEventID) {
        return Platform::Status::ok;
    }
    static_cast<MacVLMNotifyHandler*>(refcon)->notifiyAll(fontChangedCommand);
    return Platform::Status::ok;
}

// A failed send is retried after half a second, up to maxSendAttempts times; a reply
// without text ends the exchange after one wait, and one past the font manager's limits
// ends it empty. What one attempt may cost is bounded below, by the platform's send.
// Nothing leaves this function but text.
std::string MacVLMNotifyHandler::SendToVlm(const std::string& message) {
    const Platform::Services& platform = Platform::services();
    if (platform.appEvents == nullptr || platform.clock == nullptr) {
        return "";
    }
    const Platform::AppEvent request{requestEventClass, requestEventID, message};
    std::string result;
    int status = Platform::Status::ok;
    int attempts = 0;
    do {
        try {
            std::string reply;
            status = platform.appEvents->send(vellumineSignature, request, reply);
            if (status != Platform::Status::ok) {
                platform.clock->delay(retryDelayTicks);
                ++attempts;
                continue;
            }
            if (reply.empty()) {
                platform.clock->delay(retryDelayTicks);
                break;
            }
            // Refused at once and not asked again: the same request would bring the same
            // reply back.
            if (std::string why; !withinReplyLimits(reply, why)) {
                Logger::log("VLMController-send", "reply refused: " + why, 0);
                platform.appEvents->reportRefusedReply(vellumineSignature, why);
                break;
            }
            result = joinReplyLines(reply);
        } catch (...) {
            platform.clock->delay(retryDelayTicks);
            // Counted as well, so that a transport that keeps throwing cannot hold the
            // host's main thread for ever.
            ++attempts;
        }
    } while (status != Platform::Status::ok && attempts < maxSendAttempts);

    try {
        return escapeAmpersands(result);
    } catch (...) {
        return "";
    }
}

} // namespace VLM
