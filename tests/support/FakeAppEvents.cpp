#include "support/FakeAppEvents.h"

#include "platform/Status.h"

namespace VLMTest {

int FakeAppEvents::send(const std::string& signature, const Platform::AppEvent& event,
                        std::string& reply) {
    sentEvents.push_back({signature, event});
    Answer answer{Platform::Status::notRunning, ""};
    if (!answers.empty()) {
        answer = answers.front();
        answers.pop_front();
    } else if (responder) {
        answer = responder(event);
    }
    reply = answer.reply;
    return answer.status;
}

int FakeAppEvents::installHandler(const std::string& eventClass, const std::string& eventID,
                                  Platform::AppEventHandlerProc handler, void* refcon) {
    handlers[{eventClass, eventID}] = {handler, refcon};
    return Platform::Status::ok;
}

int FakeAppEvents::removeHandler(const std::string& eventClass, const std::string& eventID,
                                 Platform::AppEventHandlerProc handler) {
    auto found = handlers.find({eventClass, eventID});
    if (found == handlers.end() || found->second.handler != handler) {
        return Platform::Status::notHandled;
    }
    handlers.erase(found);
    return Platform::Status::ok;
}

int FakeAppEvents::deliver(const Platform::AppEvent& event, std::string& reply) {
    auto found = handlers.find({event.eventClass, event.eventID});
    if (found == handlers.end()) {
        found = handlers.find({event.eventClass, Platform::anyEventID});
    }
    if (found == handlers.end()) {
        return Platform::Status::notHandled;
    }
    return found->second.handler(event, reply, found->second.refcon);
}

} // namespace VLMTest
