#include "fontmanager/Server.h"

#include "fontmanager/Activation.h"
#include "fontmanager/Catalog.h"
#include "fontmanager/ChangeForwarder.h"
#include "fontmanager/LibraryChanges.h"
#include "fontmanager/RequestDispatcher.h"
#include "foundation/Logger.h"
#include "platform/Status.h"
#include "platform/linux/DBusAppEvents.h"
#include "platform/linux/notify.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <poll.h>

namespace Vellumine {

namespace {

const std::string logTag = "vellumine-serve";

// How often the loop looks at the library-change notification when the bus is quiet.
constexpr int notificationPollMillis = 50;

std::atomic<bool> stopRequested{false};

void requestStop(int) {
    stopRequested = true;
}

void installSignalHandlers() {
    struct sigaction action {};
    action.sa_handler = requestStop;
    sigemptyset(&action.sa_mask);
    sigaction(SIGTERM, &action, nullptr);
    sigaction(SIGINT, &action, nullptr);
    std::signal(SIGPIPE, SIG_IGN);
}

int answerRequest(const Platform::AppEvent& event, std::string& reply, void* refcon) {
    auto* dispatcher = static_cast<RequestDispatcher*>(refcon);
    reply = dispatcher->answer(event.text);
    return Platform::Status::ok;
}

int pollTimeout(const Platform::Linux::DBusAppEvents& events) {
    const std::uint64_t busTimeout = events.timeoutUsec();
    if (busTimeout == UINT64_MAX) {
        return notificationPollMillis;
    }
    return static_cast<int>(std::min<std::uint64_t>(
        busTimeout / 1000, static_cast<std::uint64_t>(notificationPollMillis)));
}

class ChangeWatch {
public:
    ChangeWatch() {
        if (notify_register_check(libraryChangedNotification.c_str(), &token) != 0) {
            token = -1;
            Logger::log(logTag, "cannot watch " + libraryChangedNotification +
                                    "; changes made from the command line reach applications "
                                    "only with the next request");
        }
    }
    ~ChangeWatch() {
        if (token >= 0) {
            notify_cancel(token);
        }
    }
    bool fired() {
        int check = 0;
        return token >= 0 && notify_check(token, &check) == 0 && check != 0;
    }

private:
    int token = -1;
};

int runLoop(Platform::Linux::DBusAppEvents& events, ChangeForwarder& forwarder) {
    ChangeWatch watch;
    forwarder.skipPastChanges();
    while (!stopRequested) {
        pollfd descriptor{events.fd(), static_cast<short>(events.events()), 0};
        if (poll(&descriptor, 1, pollTimeout(events)) < 0 && errno != EINTR) {
            Logger::log(logTag, std::string("poll failed: ") + std::strerror(errno));
            return 1;
        }
        if (events.processPending() != Platform::Status::ok) {
            Logger::log(logTag, "lost the session bus");
            return 1;
        }
        // The server's own changes post the notification too: one road for all of them.
        if (watch.fired()) {
            forwarder.forwardNewChanges();
        }
    }
    Logger::log(logTag, "stopping");
    return 0;
}

} // namespace

int serve(const LibraryPaths& paths, const ServeOptions& options, std::ostream& errors) {
    installSignalHandlers();
    int status = 0;
    auto events = Platform::Linux::DBusAppEvents::open(serviceBusName, status);
    if (status == Platform::Status::permissionDenied) {
        errors << "vellumine: another vellumine already serves " << serviceBusName
               << " on this session bus\n";
        return 3;
    }
    if (!events) {
        errors << "vellumine: cannot connect to the session bus (status " << status << ")\n";
        return 1;
    }
    Catalog catalog(paths.catalogFile());
    Activation activation(catalog, paths.activationFolder());
    LibraryChanges changes(catalog);
    RequestDispatcher dispatcher(catalog, activation, changes, {options.protocolVersion, {}});
    ChangeForwarder forwarder(catalog,
                              [&](const std::string& signature, const Platform::AppEvent& event) {
                                  return events->sendNoReply(signature, event);
                              });
    events->installHandler(requestEventClass, "****", answerRequest, &dispatcher);
    Logger::log(logTag, "serving " + serviceBusName + " with protocol version " +
                            options.protocolVersion + ", catalog " + paths.catalogFile().string());
    return runLoop(*events, forwarder);
}

} // namespace Vellumine
