#pragma once

#include "fontmanager/LibraryLocation.h"
#include "fontmanager/Postgres.h"

#include <chrono>
#include <memory>
#include <optional>
#include <string>

namespace Vellumine {

// Hears other workstations change a shared library: LISTENs on the PostgreSQL library's
// change channel over a connection of its own, whose socket the server's loop polls. An
// SQLite library has nobody else to hear (socket() stays -1).
//
// While the database is away it tries again every few seconds; once it is back, it reports
// a change, since notifications sent meanwhile are lost.
class LibraryListener {
public:
    using Clock = std::chrono::steady_clock;

    LibraryListener(const LibraryLocation& location, std::string workstation);
    ~LibraryListener();

    // The socket to poll for input, -1 when there is nothing to poll.
    int socket() const;
    // Reads what arrived (or reconnects when due); true when another workstation changed
    // the library, or when the connection came back.
    bool takeChange(Clock::time_point now);
    bool isListening() const { return connection != nullptr; }
    // When takeChange() should next be called although the socket stays quiet.
    std::optional<Clock::time_point> nextAttempt() const;

private:
    void listen();

    LibraryLocation location;
    std::string machine;
    std::unique_ptr<PgConnection> connection;
    Clock::time_point lastAttempt{};
    bool lost = false;
};

} // namespace Vellumine
