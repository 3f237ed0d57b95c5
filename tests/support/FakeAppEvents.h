#pragma once

#include "platform/AppEvents.h"
#include "platform/Status.h"

#include <deque>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace VLMTest {

// Application events in memory. Sends are recorded and answered from a queue of scripted
// answers, then from the default answer; delivered events go to the installed handlers
// as the event loop would hand them over.
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

    void queueAnswer(int status, const std::string& reply) { answers.push_back({status, reply}); }
    void setDefaultAnswer(int status, const std::string& reply) { fallback = {status, reply}; }
    // Computes the answer from the request instead (e.g. a font manager stand-in).
    void setResponder(std::function<Answer(const Platform::AppEvent&)> responder) {
        this->responder = std::move(responder);
    }
    // The next `count` sends throw instead of answering.
    void throwOnNextSends(int count) { throwsLeft = count; }

    // Hands an incoming event to the handler installed for its class and ID, or for its
    // class and any ID; Status::notHandled when there is none.
    int deliver(const Platform::AppEvent& event, std::string& reply);
    bool hasHandler(const std::string& eventClass, const std::string& eventID) const;

    const std::vector<Sent>& sent() const { return sentEvents; }
    void reset();

private:
    struct Installed {
        Platform::AppEventHandlerProc handler = nullptr;
        void* refcon = nullptr;
    };

    std::deque<Answer> answers;
    Answer fallback{Platform::Status::notRunning, ""};
    std::function<Answer(const Platform::AppEvent&)> responder;
    int throwsLeft = 0;
    std::vector<Sent> sentEvents;
    std::map<std::pair<std::string, std::string>, Installed> handlers;
};

} // namespace VLMTest
