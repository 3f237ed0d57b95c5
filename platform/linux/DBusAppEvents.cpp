#include "platform/linux/DBusAppEvents.h"

#include "platform/Status.h"
#include "platform/linux/AppEventWire.h"
#include "platform/linux/BusResources.h"
#include "platform/linux/SignatureTable.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <string>

namespace Platform::Linux {

namespace {

int statusFromCallError(int r, const BusError& error) {
    if (error.hasName(Wire::notHandledError)) {
        return Status::notHandled;
    }
    if (error.hasName(SD_BUS_ERROR_NAME_HAS_NO_OWNER) ||
        error.hasName(SD_BUS_ERROR_SERVICE_UNKNOWN)) {
        return Status::notRunning;
    }
    if (r == -ETIMEDOUT || error.hasName(SD_BUS_ERROR_NO_REPLY) ||
        error.hasName(SD_BUS_ERROR_TIMEOUT)) {
        return Status::timeout;
    }
    return Status::transportError;
}

// The reply's text; a text past Wire::maxReplyBytes is refused before it is copied, and its
// size given in `refusedBytes`.
int statusFromReplyMessage(sd_bus_message* reply, std::string& text,
                           std::size_t* refusedBytes = nullptr) {
    const sd_bus_error* error = sd_bus_message_get_error(reply);
    if (error != nullptr) {
        BusError copy;
        sd_bus_error_copy(copy.get(), error);
        return statusFromCallError(-sd_bus_message_get_errno(reply), copy);
    }
    const char* replyText = nullptr;
    if (sd_bus_message_read(reply, Wire::sendResult, &replyText) < 0) {
        return Status::transportError;
    }
    const std::size_t length = std::strlen(replyText);
    if (length > Wire::maxReplyBytes) {
        if (refusedBytes != nullptr) {
            *refusedBytes = length;
        }
        return Status::replyTooLarge;
    }
    text.assign(replyText, length);
    return Status::ok;
}

std::string secondsText(std::chrono::milliseconds span) {
    char text[32];
    if (span.count() % 1000 == 0) {
        std::snprintf(text, sizeof text, "%lld s", static_cast<long long>(span.count() / 1000));
    } else {
        std::snprintf(text, sizeof text, "%.1f s", static_cast<double>(span.count()) / 1000.0);
    }
    return text;
}

std::string mebibytesText(std::size_t bytes) {
    constexpr std::size_t mebibyte = 1024 * 1024;
    char text[32];
    if (bytes % mebibyte == 0) {
        std::snprintf(text, sizeof text, "%zu MiB", bytes / mebibyte);
    } else {
        std::snprintf(text, sizeof text, "%.1f MiB", static_cast<double>(bytes) / mebibyte);
    }
    return text;
}

bool isFourCharacterCode(const std::string& code) {
    return code.size() == 4;
}

std::uint64_t monotonicMicroseconds() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<std::uint64_t>(now.tv_sec) * 1000000u +
           static_cast<std::uint64_t>(now.tv_nsec) / 1000u;
}

} // namespace

struct DBusAppEvents::PendingCall {
    ReplyCallback done;
};

// The sd-bus callbacks; they see the private parts of DBusAppEvents.
struct BusCallbacks {
    static int onSend(sd_bus_message* message, void* userdata, sd_bus_error* error);
    static int onAsyncReply(sd_bus_message* reply, void* userdata, sd_bus_error* error);
};

namespace {

const sd_bus_vtable appEventVtable[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD_WITH_NAMES("Send", "sss",
                             SD_BUS_PARAM(eventClass) SD_BUS_PARAM(eventID) SD_BUS_PARAM(text), "s",
                             SD_BUS_PARAM(reply), BusCallbacks::onSend, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_VTABLE_END,
};

} // namespace

std::unique_ptr<DBusAppEvents> DBusAppEvents::open(const std::string& ownName, int& status) {
    sd_bus* raw = nullptr;
    int r = sd_bus_open_user(&raw);
    if (r < 0) {
        status = Status::transportError;
        return nullptr;
    }
    std::unique_ptr<DBusAppEvents> events(new DBusAppEvents(raw));
    status = events->exportObject();
    if (status == Status::ok && !ownName.empty()) {
        status = events->requestName(ownName);
    }
    return status == Status::ok ? std::move(events) : nullptr;
}

std::unique_ptr<DBusAppEvents> DBusAppEvents::openAddress(const std::string& address,
                                                          const std::string& ownName, int& status) {
    sd_bus* raw = nullptr;
    status = Status::transportError;
    if (sd_bus_new(&raw) < 0) {
        return nullptr;
    }
    BusPtr bus(raw);
    if (sd_bus_set_address(raw, address.c_str()) < 0 || sd_bus_set_bus_client(raw, 1) < 0 ||
        sd_bus_start(raw) < 0) {
        return nullptr;
    }
    std::unique_ptr<DBusAppEvents> events(new DBusAppEvents(bus.release()));
    status = events->exportObject();
    if (status == Status::ok && !ownName.empty()) {
        status = events->requestName(ownName);
    }
    return status == Status::ok ? std::move(events) : nullptr;
}

DBusAppEvents::DBusAppEvents(sd_bus* bus) : bus_(bus) {}

DBusAppEvents::~DBusAppEvents() {
    sd_bus_slot_unref(objectSlot_);
    if (!ownedName_.empty()) {
        sd_bus_release_name(bus_, ownedName_.c_str());
    }
    sd_bus_flush_close_unref(bus_);
}

int DBusAppEvents::exportObject() {
    int r = sd_bus_add_object_vtable(bus_, &objectSlot_, Wire::objectPath, Wire::interface,
                                     appEventVtable, this);
    return r < 0 ? Status::transportError : Status::ok;
}

int DBusAppEvents::requestName(const std::string& name) {
    // Flags 0: no queueing and no replacement, so a second instance learns at once that
    // the name is taken instead of waiting silently in the queue.
    int r = sd_bus_request_name(bus_, name.c_str(), 0);
    if (r == -EEXIST) {
        return Status::permissionDenied;
    }
    if (r < 0) {
        return r == -EINVAL ? Status::invalidArgument : Status::transportError;
    }
    ownedName_ = name;
    return Status::ok;
}

std::string DBusAppEvents::uniqueName() const {
    const char* unique = nullptr;
    if (sd_bus_get_unique_name(bus_, &unique) < 0 || unique == nullptr) {
        return {};
    }
    return unique;
}

int DBusAppEvents::installHandler(const std::string& eventClass, const std::string& eventID,
                                  AppEventHandlerProc handler, void* refcon) {
    if (handler == nullptr || !isFourCharacterCode(eventClass) || !isFourCharacterCode(eventID)) {
        return Status::invalidArgument;
    }
    std::lock_guard lock(handlersMutex_);
    handlers_[{eventClass, eventID}] = HandlerEntry{handler, refcon};
    return Status::ok;
}

int DBusAppEvents::removeHandler(const std::string& eventClass, const std::string& eventID,
                                 AppEventHandlerProc handler) {
    std::lock_guard lock(handlersMutex_);
    auto found = handlers_.find({eventClass, eventID});
    if (found == handlers_.end() || found->second.proc != handler) {
        return Status::notHandled;
    }
    handlers_.erase(found);
    return Status::ok;
}

bool DBusAppEvents::findHandler(const std::string& eventClass, const std::string& eventID,
                                HandlerEntry& entry) const {
    std::lock_guard lock(handlersMutex_);
    auto found = handlers_.find({eventClass, eventID});
    if (found == handlers_.end()) {
        found = handlers_.find({eventClass, anyEventID});
    }
    if (found == handlers_.end()) {
        return false;
    }
    entry = found->second;
    return true;
}

int BusCallbacks::onSend(sd_bus_message* message, void* userdata, sd_bus_error* error) {
    auto* self = static_cast<DBusAppEvents*>(userdata);
    const char* eventClass = nullptr;
    const char* eventID = nullptr;
    const char* text = nullptr;
    int r = sd_bus_message_read(message, Wire::sendArguments, &eventClass, &eventID, &text);
    if (r < 0) {
        return r;
    }
    DBusAppEvents::HandlerEntry entry;
    if (!self->findHandler(eventClass, eventID, entry)) {
        return sd_bus_error_setf(error, Wire::notHandledError, "No handler for event %s/%s",
                                 eventClass, eventID);
    }
    AppEvent event{eventClass, eventID, text};
    std::string reply;
    int status = Status::transportError;
    try {
        // The handler is plain code of the application; nothing it throws may unwind
        // through sd-bus.
        status = entry.proc(event, reply, entry.refcon);
    } catch (...) {
        return sd_bus_error_setf(error, Wire::failedError, "Handler for %s/%s threw", eventClass,
                                 eventID);
    }
    if (status == Status::notHandled) {
        return sd_bus_error_setf(error, Wire::notHandledError, "Event %s/%s not handled",
                                 eventClass, eventID);
    }
    if (status != Status::ok) {
        return sd_bus_error_setf(error, Wire::failedError, "%d", status);
    }
    return sd_bus_reply_method_return(message, Wire::sendResult, reply.c_str());
}

namespace {

// The method call that carries `event` to `target`, a signature or a bus name; `busName`
// receives the name it goes to.
int newEventCall(sd_bus* bus, const std::string& target, const AppEvent& event, MessagePtr& call,
                 std::string& busName) {
    const auto resolved = resolveTarget(target);
    if (!resolved) {
        return Status::notRunning;
    }
    busName = *resolved;
    sd_bus_message* raw = nullptr;
    int r = sd_bus_message_new_method_call(bus, &raw, busName.c_str(), Wire::objectPath,
                                           Wire::interface, Wire::sendMethod);
    if (r < 0) {
        return r == -EINVAL ? Status::notRunning : Status::transportError;
    }
    call.reset(raw);
    // An application runs exactly when its name has an owner: never let the bus start one.
    if (sd_bus_message_set_auto_start(raw, 0) < 0 ||
        sd_bus_message_append(raw, Wire::sendArguments, event.eventClass.c_str(),
                              event.eventID.c_str(), event.text.c_str()) < 0) {
        return Status::transportError;
    }
    return Status::ok;
}

} // namespace

int DBusAppEvents::send(const std::string& signature, const AppEvent& event, std::string& reply) {
    reply.clear();
    const auto busName = resolveTarget(signature);
    if (!busName) {
        return Status::notRunning;
    }
    std::string owner;
    int status = ownerOf(*busName, owner);
    if (status == Status::ok) {
        status = rememberedTrouble(*busName, owner);
    }
    MessagePtr call;
    std::string addressed;
    if (status == Status::ok) {
        // Addressed to the owner just found, so that a trouble is pinned on that instance.
        status = newEventCall(bus_, owner, event, call, addressed);
    }
    if (status != Status::ok) {
        return status;
    }
    BusError error;
    sd_bus_message* rawReply = nullptr;
    const auto timeoutUsec = static_cast<std::uint64_t>(callTimeout_.count()) * 1000u;
    const int r = sd_bus_call(bus_, call.get(), timeoutUsec, error.get(), &rawReply);
    MessagePtr replyMessage(rawReply);
    std::size_t refusedBytes = 0;
    status = r < 0 ? statusFromCallError(r, error)
                   : statusFromReplyMessage(replyMessage.get(), reply, &refusedBytes);
    const std::string until = "; requests to it fail at once until it is restarted or " +
                              secondsText(troubleMemory_) + " have passed";
    std::string stillOwner;
    // A peer that quit during the call also ends it without a reply; only one that still
    // owns the name is silent.
    if (status == Status::timeout && ownerOf(*busName, stillOwner) == Status::ok &&
        stillOwner == owner) {
        remember(*busName, owner, status,
                 describeApplication(*busName) + " does not answer: no reply within " +
                     secondsText(callTimeout_) + " (is it stopped?)" + until);
    } else if (status == Status::replyTooLarge) {
        remember(*busName, owner, status,
                 describeApplication(*busName) + " sent a reply of " + mebibytesText(refusedBytes) +
                     ", more than the " + mebibytesText(Wire::maxReplyBytes) +
                     " an application may send; the reply was refused" + until);
    }
    return status;
}

void DBusAppEvents::reportRefusedReply(const std::string& signature, const std::string& why) {
    const auto busName = resolveTarget(signature);
    if (!busName) {
        return;
    }
    std::string owner;
    if (ownerOf(*busName, owner) != Status::ok) {
        owner = *busName;
    }
    tellOnce(owner, "refused",
             "the reply of " + describeApplication(*busName) + " was refused: " + why);
}

int DBusAppEvents::rememberedTrouble(const std::string& busName, const std::string& owner) {
    auto found = troubles_.find(busName);
    if (found == troubles_.end()) {
        return Status::ok;
    }
    const auto memoryUsec = static_cast<std::uint64_t>(troubleMemory_.count()) * 1000u;
    if (found->second.owner == owner &&
        monotonicMicroseconds() - found->second.sinceUsec < memoryUsec) {
        return found->second.status;
    }
    troubles_.erase(found);
    return Status::ok;
}

void DBusAppEvents::remember(const std::string& busName, const std::string& owner, int status,
                             const std::string& notice) {
    troubles_[busName] = Trouble{owner, monotonicMicroseconds(), status};
    tellOnce(owner, std::to_string(status), notice);
}

void DBusAppEvents::tellOnce(const std::string& owner, const std::string& kind,
                             const std::string& notice) {
    if (!told_.insert({owner, kind}).second || !notice_) {
        return;
    }
    try {
        notice_(notice);
    } catch (...) {
        // The host's presenter failing must not turn a send's result into an exception.
    }
}

int DBusAppEvents::ownerOf(const std::string& busName, std::string& owner) {
    owner.clear();
    BusError error;
    sd_bus_message* raw = nullptr;
    const int r = sd_bus_call_method(bus_, "org.freedesktop.DBus", "/org/freedesktop/DBus",
                                     "org.freedesktop.DBus", "GetNameOwner", error.get(), &raw, "s",
                                     busName.c_str());
    MessagePtr reply(raw);
    if (r < 0) {
        // No owner, or no valid bus name at all: either way nobody runs under it.
        return error.hasName(SD_BUS_ERROR_NAME_HAS_NO_OWNER) ||
                       error.hasName(SD_BUS_ERROR_INVALID_ARGS)
                   ? Status::notRunning
                   : Status::transportError;
    }
    const char* unique = nullptr;
    if (sd_bus_message_read(raw, "s", &unique) < 0 || unique == nullptr) {
        return Status::transportError;
    }
    owner = unique;
    return Status::ok;
}

bool DBusAppEvents::hasOwner(const std::string& busName) {
    BusError error;
    sd_bus_message* raw = nullptr;
    int r = sd_bus_call_method(bus_, "org.freedesktop.DBus", "/org/freedesktop/DBus",
                               "org.freedesktop.DBus", "NameHasOwner", error.get(), &raw, "s",
                               busName.c_str());
    MessagePtr reply(raw);
    int owned = 0;
    return r >= 0 && sd_bus_message_read(raw, "b", &owned) >= 0 && owned;
}

int DBusAppEvents::sendNoReply(const std::string& target, const AppEvent& event) {
    MessagePtr call;
    std::string busName;
    int status = newEventCall(bus_, target, event, call, busName);
    if (status != Status::ok) {
        return status;
    }
    if (!hasOwner(busName)) {
        return Status::notRunning;
    }
    if (sd_bus_message_set_expect_reply(call.get(), 0) < 0 ||
        sd_bus_send(bus_, call.get(), nullptr) < 0 || sd_bus_flush(bus_) < 0) {
        return Status::transportError;
    }
    return Status::ok;
}

int DBusAppEvents::sendAsync(const std::string& target, const AppEvent& event, ReplyCallback done) {
    MessagePtr call;
    std::string busName;
    int status = newEventCall(bus_, target, event, call, busName);
    if (status != Status::ok) {
        return status;
    }
    auto* pending = new PendingCall{std::move(done)};
    sd_bus_slot* slot = nullptr;
    int r = sd_bus_call_async(bus_, &slot, call.get(), &BusCallbacks::onAsyncReply, pending, 0);
    if (r < 0) {
        delete pending;
        return Status::transportError;
    }
    // The bus keeps the slot until the reply came; the slot frees the pending call with it.
    sd_bus_slot_set_destroy_callback(
        slot, [](void* userdata) { delete static_cast<PendingCall*>(userdata); });
    sd_bus_slot_set_floating(slot, 1);
    sd_bus_slot_unref(slot);
    return sd_bus_flush(bus_) < 0 ? Status::transportError : Status::ok;
}

int BusCallbacks::onAsyncReply(sd_bus_message* reply, void* userdata, sd_bus_error*) {
    auto* pending = static_cast<DBusAppEvents::PendingCall*>(userdata);
    std::string text;
    int status = statusFromReplyMessage(reply, text);
    if (pending->done) {
        try {
            pending->done(status, text);
        } catch (...) {
            // Same rule as for handlers: nothing unwinds through sd-bus.
        }
    }
    return 0;
}

int DBusAppEvents::fd() const {
    int r = sd_bus_get_fd(bus_);
    return r < 0 ? -1 : r;
}

int DBusAppEvents::events() const {
    int r = sd_bus_get_events(bus_);
    return r < 0 ? 0 : r;
}

std::uint64_t DBusAppEvents::timeoutUsec() const {
    std::uint64_t deadline = UINT64_MAX;
    if (sd_bus_get_timeout(bus_, &deadline) < 0 || deadline == UINT64_MAX) {
        return UINT64_MAX;
    }
    std::uint64_t now = monotonicMicroseconds();
    return deadline > now ? deadline - now : 0;
}

int DBusAppEvents::processPending() {
    for (;;) {
        int r = sd_bus_process(bus_, nullptr);
        if (r < 0) {
            return Status::transportError;
        }
        if (r == 0) {
            return Status::ok;
        }
    }
}

int DBusAppEvents::runUntil(const std::function<bool()>& stop, int pollMillis) {
    const std::uint64_t waitUsec =
        pollMillis < 0 ? UINT64_MAX : static_cast<std::uint64_t>(pollMillis) * 1000u;
    for (;;) {
        int status = processPending();
        if (status != Status::ok) {
            return status;
        }
        if (stop && stop()) {
            return Status::ok;
        }
        int r = sd_bus_wait(bus_, waitUsec);
        if (r < 0 && r != -EINTR) {
            return Status::transportError;
        }
    }
}

} // namespace Platform::Linux
