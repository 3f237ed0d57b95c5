#include "fontmanager/Server.h"

#include "fontmanager/Activation.h"
#include "fontmanager/BusDesktop.h"
#include "fontmanager/Catalog.h"
#include "fontmanager/ChangeForwarder.h"
#include "fontmanager/LauncherEntry.h"
#include "fontmanager/LibraryChanges.h"
#include "fontmanager/LibraryCheck.h"
#include "fontmanager/LibraryListener.h"
#include "fontmanager/LibrarySelection.h"
#include "fontmanager/OpenCatalog.h"
#include "fontmanager/RequestDispatcher.h"
#include "fontmanager/TemporaryActivation.h"
#include "fontmanager/Workstation.h"
#include "foundation/Logger.h"
#include "platform/Status.h"
#include "platform/linux/DBusAppEvents.h"
#include "platform/linux/notify.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <poll.h>
#include <systemd/sd-bus.h>
#include <thread>

namespace Vellumine {

namespace {

const std::string logTag = "vellumine-serve";

// How often the loop looks at the library-change notification when the bus is quiet.
constexpr int notificationPollMillis = 50;
// After losing the bus connection (the bus daemon drops a connection that sends a message
// past its limits, or restarts), the server connects again this many times.
constexpr int reconnectAttempts = 3;

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

int pollTimeout(const Platform::Linux::DBusAppEvents& events, const TemporaryActivation& temporary,
                const LibraryListener& listener) {
    std::uint64_t millis = notificationPollMillis;
    if (const auto retry = listener.nextAttempt()) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            *retry - LibraryListener::Clock::now());
        millis = std::min<std::uint64_t>(millis, std::max<std::int64_t>(left.count(), 0));
    }
    const std::uint64_t busTimeout = events.timeoutUsec();
    if (busTimeout != UINT64_MAX) {
        millis = std::min<std::uint64_t>(millis, busTimeout / 1000);
    }
    if (const auto deadline = temporary.nextDeadline()) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            *deadline - TemporaryActivation::Clock::now());
        millis = std::min<std::uint64_t>(millis, std::max<std::int64_t>(left.count(), 0));
    }
    return static_cast<int>(millis);
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

enum class LoopEnd { stopped, busLost, failed };

void logRepairs(const LibraryCheckReport& report, LibraryChanges* changes);

// What the loop works with besides the bus.
struct LoopParts {
    ChangeForwarder& forwarder;
    TemporaryActivation& temporary;
    LibraryListener& listener;
    Catalog& catalog;
    LibraryChanges& changes;
    std::filesystem::path activationFolder;
};

// Another workstation changed the shared library: faces it removed may still be linked
// here (their records went with them), and the applications here must hear of it. The
// named notification also reaches this workstation's other vellumine processes (the window).
void takeRemoteChange(LoopParts& parts) {
    try {
        logRepairs(repairLinks(parts.catalog, parts.activationFolder), &parts.changes);
    } catch (const std::exception& error) {
        Logger::log(logTag, std::string("after a change of the library: ") + error.what());
    }
    notify_post(libraryChangedNotification.c_str());
}

void forwardChanges(ChangeForwarder& forwarder) {
    try {
        forwarder.forwardNewChanges();
    } catch (const std::exception& error) {
        // The library is away: the journal is read again with the next change.
        Logger::log(logTag, std::string("forwarding library changes: ") + error.what());
    }
}

LoopEnd runLoop(Platform::Linux::DBusAppEvents& events, LoopParts& parts) {
    ChangeForwarder& forwarder = parts.forwarder;
    TemporaryActivation& temporary = parts.temporary;
    ChangeWatch watch;
    while (!stopRequested) {
        pollfd descriptors[2] = {{events.fd(), static_cast<short>(events.events()), 0},
                                 {parts.listener.socket(), POLLIN, 0}};
        const nfds_t count = descriptors[1].fd >= 0 ? 2 : 1;
        if (poll(descriptors, count, pollTimeout(events, temporary, parts.listener)) < 0 &&
            errno != EINTR) {
            Logger::log(logTag, std::string("poll failed: ") + std::strerror(errno));
            return LoopEnd::failed;
        }
        if (events.processPending() != Platform::Status::ok) {
            // One message that could not be handled or answered must not end the service.
            if (sd_bus_is_open(events.bus()) <= 0) {
                Logger::log(logTag, "lost the session bus");
                return LoopEnd::busLost;
            }
            Logger::log(logTag, "a message failed; serving on");
        }
        try {
            temporary.deactivateDue(TemporaryActivation::Clock::now());
        } catch (const std::exception& error) {
            Logger::log(logTag, std::string("deactivating fonts of applications that left: ") +
                                    error.what());
        }
        if (parts.listener.takeChange(LibraryListener::Clock::now())) {
            takeRemoteChange(parts);
            forwardChanges(forwarder);
        }
        // The server's own changes post the notification too: one road for all of them.
        if (watch.fired()) {
            forwardChanges(forwarder);
        }
    }
    Logger::log(logTag, "stopping");
    return LoopEnd::stopped;
}

std::string busDescription() {
    const char* address = std::getenv("DBUS_SESSION_BUS_ADDRESS");
    return address != nullptr && *address != '\0'
               ? std::string("at ") + address
               : "of this user (DBUS_SESSION_BUS_ADDRESS is not set)";
}

// Connects and owns the service name; on failure says why and sets the exit status.
std::unique_ptr<Platform::Linux::DBusAppEvents> connect(std::ostream& errors, int& exitStatus) {
    int status = 0;
    auto events = Platform::Linux::DBusAppEvents::open(serviceBusName, status);
    if (status == Platform::Status::permissionDenied) {
        errors << "vellumine: another vellumine already serves " << serviceBusName
               << " on this session bus\n";
        exitStatus = 3;
    } else if (!events) {
        errors << "vellumine: cannot connect to the session bus " << busDescription()
               << ": no session bus is running there, or it refused the connection\n";
        exitStatus = 1;
    }
    return events;
}

std::unique_ptr<Platform::Linux::DBusAppEvents> reconnect(std::ostream& errors, int& exitStatus) {
    for (int attempt = 1; attempt <= reconnectAttempts && !stopRequested; ++attempt) {
        std::this_thread::sleep_for(std::chrono::milliseconds(200 * attempt));
        if (auto events = connect(errors, exitStatus)) {
            Logger::log(logTag, "connected to the session bus again");
            return events;
        }
        if (exitStatus == 3) {
            break;
        }
    }
    return nullptr;
}

// Logs what a check found and repaired; repaired links change the active fonts.
void logRepairs(const LibraryCheckReport& report, LibraryChanges* changes) {
    for (const auto& problem : report.problems) {
        Logger::log(logTag, "found: " + problem);
    }
    for (const auto& repair : report.repairs) {
        Logger::log(logTag, "repaired: " + repair);
    }
    if (changes != nullptr && !report.repairs.empty()) {
        changes->announce(ChangeKind::activeFontsChanged);
    }
}

// Repairs what a command killed half-way left behind (a link nothing records, or a record
// without link), and links of faces another workstation removed from a shared library.
void reconcile(Catalog& catalog, const std::filesystem::path& activationFolder) {
    logRepairs(repairLinks(catalog, activationFolder), nullptr);
}

} // namespace

int serve(const LibraryPaths& paths, const ServeOptions& options, std::ostream& errors) {
    installSignalHandlers();
    int exitStatus = 0;
    auto events = connect(errors, exitStatus);
    if (!events) {
        return exitStatus;
    }
    const LibraryLocation location = currentLibrary();
    std::unique_ptr<Catalog> library;
    try {
        library = openCatalog(location);
    } catch (const CatalogError& error) {
        errors << "vellumine: " << error.what() << "\n";
        return 1;
    }
    Catalog& catalog = *library;
    catalog.keepLastAnswers();
    reconcile(catalog, paths.activationFolder());
    Activation activation(catalog, paths.activationFolder());
    LibraryChanges changes(catalog);
    changes.warnTo(errors);
    std::unique_ptr<BusDesktop> desktop;
    TemporaryActivation temporary(
        catalog, activation, changes,
        [&](const std::string& signature) { return !desktop || desktop->isRunning(signature); },
        options.deactivationDelay);
    RequestDispatcher dispatcher(
        catalog, activation, changes,
        {options.protocolVersion, {}, {}, nullptr, paths.systemFontsFile()});
    dispatcher.preloadSystemFonts();
    ChangeForwarder forwarder(catalog,
                              [&](const std::string& signature, const Platform::AppEvent& event) {
                                  return events->sendNoReply(signature, event);
                              });
    forwarder.skipPastChanges();
    LibraryListener listener(location, workstationId());
    LoopParts parts{forwarder, temporary, listener, catalog, changes, paths.activationFolder()};
    Logger::log(logTag, "serving " + serviceBusName + " with protocol version " +
                            options.protocolVersion + ", library " + location.shown());
    for (;;) {
        desktop = std::make_unique<BusDesktop>(*events, temporary, ownExecutable());
        dispatcher.setDesktop(desktop.get());
        // Applications that left while no server watched them.
        temporary.reviewRequesters(TemporaryActivation::Clock::now());
        events->installHandler(requestEventClass, "****", answerRequest, &dispatcher);
        const LoopEnd end = runLoop(*events, parts);
        if (end != LoopEnd::busLost) {
            return end == LoopEnd::stopped ? 0 : 1;
        }
        dispatcher.setDesktop(nullptr);
        desktop.reset();
        events.reset();
        events = reconnect(errors, exitStatus);
        if (!events) {
            errors << "vellumine: lost the session bus and could not connect again\n";
            return exitStatus != 0 ? exitStatus : 1;
        }
    }
}

} // namespace Vellumine
