#pragma once

#include "platform/AppEvents.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <utility>

typedef struct sd_bus sd_bus;
typedef struct sd_bus_message sd_bus_message;
typedef struct sd_bus_slot sd_bus_slot;

namespace Platform::Linux {

// Application events over the D-Bus session bus.
//
// Each taking-part application owns one well-known name and exports the object
// /org/galley/AppEvent with the method org.galley.AppEvent1.Send(s eventClass,
// s eventID, s text) -> s reply. Sending maps a signature to its name through the
// signature table and never starts anything by bus activation.
//
// One object is one bus connection and is not thread-safe: send, dispatch and handler
// installation belong to the thread that owns it (the application's event loop thread).
// Handlers run only inside processPending()/runUntil(), never during a blocking send():
// events that arrive while send() waits for its reply stay queued until the next dispatch.
class DBusAppEvents : public Platform::AppEvents {
public:
    // Connects to the session bus named by $DBUS_SESSION_BUS_ADDRESS (else the user's
    // default bus). When `ownName` is non-empty, requests that name without queueing and
    // without allowing replacement: Status::permissionDenied when another connection owns
    // it already. Other failures give Status::transportError. Null on failure.
    static std::unique_ptr<DBusAppEvents> open(const std::string& ownName, int& status);
    // The same on an explicit bus address ("unix:path=...").
    static std::unique_ptr<DBusAppEvents> openAddress(const std::string& address,
                                                      const std::string& ownName, int& status);

    ~DBusAppEvents() override;
    DBusAppEvents(const DBusAppEvents&) = delete;
    DBusAppEvents& operator=(const DBusAppEvents&) = delete;

    // Blocks for the reply, at most callTimeout(). `signature` may also be a bus name.
    // Status::notRunning (no owner, or a signature not in the table), Status::timeout,
    // Status::notHandled, Status::replyTooLarge (past Wire::maxReplyBytes; the text is
    // never copied), Status::transportError.
    //
    // A peer that let a call time out or sent a reply past the limit is remembered by the
    // unique name that owned the addressed name: further sends to it fail at once with the
    // same status, so that a caller's retries cost nothing but their own waits. The memory
    // ends when another connection owns the name (a restarted application gets a fresh
    // chance) or troubleMemory() after the trouble, so that an application that was only
    // busy is tried again by a later exchange. The user is told once per peer instance.
    int send(const std::string& signature, const AppEvent& event, std::string& reply) override;
    void reportRefusedReply(const std::string& signature, const std::string& why) override;

    // How long one send() waits for a reply. Short enough that a caller's twenty attempts
    // half a second apart (the plug-in's transport) end within 15 s against a silent peer:
    // one wait of 4 s, then nineteen sends that fail at once.
    static constexpr std::chrono::milliseconds defaultCallTimeout{4000};
    // Longer than one such exchange, so that it pays the call timeout once.
    static constexpr std::chrono::milliseconds defaultTroubleMemory{30000};
    std::chrono::milliseconds callTimeout() const { return callTimeout_; }
    std::chrono::milliseconds troubleMemory() const { return troubleMemory_; }
    void setCallTimeout(std::chrono::milliseconds timeout) { callTimeout_ = timeout; }
    void setTroubleMemory(std::chrono::milliseconds span) { troubleMemory_ = span; }

    // Where messages for the user go: a peer that does not answer, a reply refused. The
    // host shows them (standard error in batch mode, the window's status bar). Runs on the
    // sending thread, inside send().
    using NoticeHandler = std::function<void(const std::string& text)>;
    void setNoticeHandler(NoticeHandler handler) { notice_ = std::move(handler); }
    int installHandler(const std::string& eventClass, const std::string& eventID,
                       AppEventHandlerProc handler, void* refcon) override;
    int removeHandler(const std::string& eventClass, const std::string& eventID,
                      AppEventHandlerProc handler) override;

    // Sends without waiting for (or receiving) a reply: the receiver's handler runs, its
    // reply is dropped. Use it towards an application that may itself be blocked in a
    // send() to this one. `target` is a signature or a bus name. Status::notRunning when
    // the name has no owner at the time of sending.
    int sendNoReply(const std::string& target, const AppEvent& event);

    // Sends and returns at once; `done` runs from a later processPending()/runUntil() on
    // this thread with the outcome (the same statuses as send) and the reply text.
    using ReplyCallback = std::function<void(int status, const std::string& reply)>;
    int sendAsync(const std::string& target, const AppEvent& event, ReplyCallback done);

    // Whether `busName` currently has an owner; false also when the bus cannot tell.
    bool hasOwner(const std::string& busName);
    // The unique name that owns `busName`: Status::notRunning when none does.
    int ownerOf(const std::string& busName, std::string& owner);

    // For an event loop: poll fd() for events() (poll(2) flags); call processPending()
    // when it is ready or when timeoutUsec() microseconds (from now; UINT64_MAX = none)
    // have passed.
    int fd() const;
    int events() const;
    std::uint64_t timeoutUsec() const;

    // Dispatches everything queued on the calling thread. Status::ok, or
    // Status::transportError when the connection broke.
    int processPending();
    // Dispatches until stop() returns true (checked after each round) or the connection
    // breaks; waits at most `pollMillis` between rounds.
    int runUntil(const std::function<bool()>& stop, int pollMillis);

    // The name requested in open() ("" for none) and this connection's unique name.
    const std::string& ownedName() const { return ownedName_; }
    std::string uniqueName() const;
    // The underlying connection, for other bus users of this layer.
    sd_bus* bus() const { return bus_; }

private:
    struct HandlerEntry {
        AppEventHandlerProc proc = nullptr;
        void* refcon = nullptr;
    };
    struct PendingCall;

    explicit DBusAppEvents(sd_bus* bus);
    int exportObject();
    int requestName(const std::string& name);
    bool findHandler(const std::string& eventClass, const std::string& eventID,
                     HandlerEntry& entry) const;
    // A peer that timed out or sent too much, by the well-known name it was addressed by.
    struct Trouble {
        std::string owner;
        std::uint64_t sinceUsec = 0;
        int status = 0;
    };
    int rememberedTrouble(const std::string& busName, const std::string& owner);
    void remember(const std::string& busName, const std::string& owner, int status,
                  const std::string& notice);
    void tellOnce(const std::string& owner, const std::string& kind, const std::string& notice);
    friend struct BusCallbacks;

    sd_bus* bus_ = nullptr;
    sd_bus_slot* objectSlot_ = nullptr;
    std::string ownedName_;
    mutable std::mutex handlersMutex_;
    std::map<std::pair<std::string, std::string>, HandlerEntry> handlers_;
    std::chrono::milliseconds callTimeout_ = defaultCallTimeout;
    std::chrono::milliseconds troubleMemory_ = defaultTroubleMemory;
    std::map<std::string, Trouble> troubles_;
    std::set<std::pair<std::string, std::string>> told_; // owner and kind of trouble
    NoticeHandler notice_;
};

} // namespace Platform::Linux
