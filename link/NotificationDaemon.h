#pragma once

#include "foundation/SafeFIFOBuffer.h"
#include "foundation/SmartPointer.h"
#include "foundation/Thread.h"

#include <atomic>
#include <map>
#include <string>

namespace BSDNotification {

// Watches named notifications. Each watched name has a reading thread that polls it
// every millisecond and queues one message per observed posting; the owning thread takes
// the messages out with hasFired(). Only the queues are shared between threads.
class Daemon {
public:
    class ReadingThread : public Tamrik::Thread, public Tamrik::SmartPointable {
    public:
        explicit ReadingThread(int token);
        ~ReadingThread() override;

        // Takes one queued message without waiting.
        bool checkMessage(int& message);
        // Ends the polling loop and waits for it; true when the thread was reaped.
        bool stop();
        int getToken() const { return token; }

    protected:
        int run() override;

    private:
        std::atomic<bool> keepRunning{true};
        int token;
        Tamrik::SafeFIFOBuffer<int> messages;
    };

    Daemon() = default;
    virtual ~Daemon();
    Daemon(const Daemon&) = delete;
    Daemon& operator=(const Daemon&) = delete;

    // Raises std::runtime_error("token could not be registered") when the name cannot be
    // registered; otherwise the result of starting its reading thread.
    bool addListener(const std::string& name);
    // The empty name stops every reading thread.
    void removeListener(const std::string& name);
    // Consumes one firing of the name; the empty name takes one of any watched name.
    bool hasFired(const std::string& name);

    bool isWatching(const std::string& name) const { return listeners.count(name) != 0; }
    std::size_t watchedCount() const { return listeners.size(); }

private:
    std::map<std::string, Tamrik::SmartPointer<ReadingThread>> listeners;
};

} // namespace BSDNotification
