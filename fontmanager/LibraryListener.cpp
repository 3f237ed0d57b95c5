#include "fontmanager/LibraryListener.h"

#include "fontmanager/PostgresCatalog.h"
#include "foundation/Logger.h"

namespace Vellumine {

namespace {

const std::string logTag = "vellumine-listen";
constexpr auto retryInterval = std::chrono::seconds(2);

} // namespace

LibraryListener::LibraryListener(const LibraryLocation& location, std::string workstation)
    : location(location), machine(std::move(workstation)) {
    if (location.kind == LibraryLocation::Kind::postgresql) {
        listen();
    }
}

LibraryListener::~LibraryListener() = default;

void LibraryListener::listen() {
    lastAttempt = Clock::now();
    try {
        connection = std::make_unique<PgConnection>(location.url, location.shown());
        connection->execute(std::string("LISTEN ") + PostgresCatalog::changeChannel);
        Logger::log(logTag, "listening for changes of " + connection->description());
    } catch (const CatalogError& error) {
        connection.reset();
        if (!lost) {
            Logger::log(logTag, std::string(error.what()) + "; trying again every few seconds");
        }
        lost = true;
    }
}

int LibraryListener::socket() const {
    return connection ? connection->socket() : -1;
}

std::optional<LibraryListener::Clock::time_point> LibraryListener::nextAttempt() const {
    if (location.kind != LibraryLocation::Kind::postgresql || connection) {
        return std::nullopt;
    }
    return lastAttempt + retryInterval;
}

bool LibraryListener::takeChange(Clock::time_point now) {
    if (location.kind != LibraryLocation::Kind::postgresql) {
        return false;
    }
    if (!connection) {
        if (now - lastAttempt < retryInterval) {
            return false;
        }
        listen();
        if (!connection) {
            return false;
        }
        lost = false;
        Logger::log(logTag, "the library is back");
        return true;
    }
    try {
        bool changed = false;
        for (const auto& payload : connection->takeNotifications()) {
            changed = changed || payload != machine; // our own changes are announced already
        }
        if (!connection->isOpen()) {
            throw PostgresUnreachable(connection->description() + " closed the connection", "");
        }
        return changed;
    } catch (const CatalogError& error) {
        Logger::log(logTag, error.what());
        connection.reset();
        // The server may have restarted already: missed notifications count as a change.
        listen();
        return connection != nullptr;
    }
}

} // namespace Vellumine
