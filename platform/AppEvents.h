#pragma once

#include <string>

namespace Platform {

// One application event: class and ID are four-character codes, text is the event's
// direct-object text (UTF-8).
struct AppEvent {
    std::string eventClass;
    std::string eventID;
    std::string text;
};

// Handler of incoming events. It writes its reply text into `reply` (left empty for no
// reply) and returns a Status; `refcon` is the value given when it was installed.
using AppEventHandlerProc = int (*)(const AppEvent& event, std::string& reply, void* refcon);

// Wildcard event ID: a handler installed under it receives every ID of its class.
inline const std::string anyEventID = "****";

// Sending events to applications by signature, and receiving them. Errors are results,
// never exceptions.
class AppEvents {
public:
    virtual ~AppEvents() = default;

    // Sends the event to the application with `signature` and blocks for its reply, for a
    // bounded time. Status::notRunning when it does not run, Status::timeout,
    // Status::notHandled, Status::replyTooLarge, or Status::transportError.
    virtual int send(const std::string& signature, const AppEvent& event, std::string& reply) = 0;

    // Tells the user that a reply of the application with `signature` was refused, and
    // `why`; once per running instance of it. For checks the caller makes of a reply's
    // content; send() reports what it refuses itself. By default nobody is told.
    virtual void reportRefusedReply(const std::string& /*signature*/, const std::string& /*why*/) {}

    // Installs a handler for a class and ID (anyEventID for all IDs of the class); a second
    // install for the same class and ID replaces the first. Handlers run on the thread that
    // owns the application's event loop.
    virtual int installHandler(const std::string& eventClass, const std::string& eventID,
                               AppEventHandlerProc handler, void* refcon) = 0;
    // Removes the handler installed for exactly this class, ID and routine.
    virtual int removeHandler(const std::string& eventClass, const std::string& eventID,
                              AppEventHandlerProc handler) = 0;
};

} // namespace Platform
