#pragma once

#include "platform/AppEvents.h"

#include <deque>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace VLMTest {

// Application events in memory. Sends are recorded and answered from a queue of scripted
// answers, then by the responder, else as if the application were not running; delivered
// events go to the installed handlers as the event loop would hand them over.
class FakeAppEvents : public Platform::AppEvents {
public:
    struct Answer {
        int status = 0;
        std::string reply;
    };
    struct Sent {
        std::string signature;
        Platform::AppEvent event;
    };

    int send(const std::string& signature, const Platform::AppEvent& event,
             std::string& reply) override;
    int installHandler(const std::string& eventClass, const std::string& eventID,
                       Platform::AppEventHandlerProc handler, void* refcon) override;
    int removeHandler(const std::string& eventClass, const std::string& eventID,
                      Platform::AppEventHandlerProc handler) override;
    void reportRefusedReply(const std::string& signature, const std::string& why) override {
        refusals.push_back(signature + ": " + why);
    }

    void queueAnswer(int status, const std::string& reply) { answers.push_back({status, reply}); }
    // Computes the answer from the request instead (e.g. a font manager stand-in); it may
    // also throw, as a failing transport would.
    void setResponder(std::function<Answer(const Platform::AppEvent&)> responder) {
        this->responder = std::move(responder);
    }

    // Hands an incoming event to the handler installed for its class and ID, or for its
    // class and any ID; Status::notHandled when there is none.
    int deliver(const Platform::AppEvent& event, std::string& reply);
    bool hasHandler(const std::string& eventClass, const std::string& eventID) const {
        return handlers.count({eventClass, eventID}) != 0;
    }

    const std::vector<Sent>& sent() const { return sentEvents; }
    // What callers refused of replies, as "signature: why".
    std::vector<std::string> refusals;

private:
    struct Installed {
        Platform::AppEventHandlerProc handler = nullptr;
        void* refcon = nullptr;
    };

    std::deque<Answer> answers;
    std::function<Answer(const Platform::AppEvent&)> responder;
    std::vector<Sent> sentEvents;
    std::map<std::pair<std::string, std::string>, Installed> handlers;
};

} // namespace VLMTest
