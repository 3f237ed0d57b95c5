#pragma once

#include "foundation/SynchEvent.h"

#include <atomic>
#include <pthread.h>

namespace Tamrik {

// A worker thread with a start handshake: the system thread waits for the start event,
// so run() never begins before start() has finished its bookkeeping. Results are reported
// as booleans; only the start event can raise.
class Thread {
public:
    Thread();
    // Cancels and reaps a live thread, then releases a thread still waiting to start.
    virtual ~Thread();
    Thread(const Thread&) = delete;
    Thread& operator=(const Thread&) = delete;

    // priority -1 inherits the creator's scheduling; any other value asks for round-robin
    // at that priority.
    bool start(bool detached, int priority);
    bool join();
    bool destroy();

    // Sleeps the whole time even when signals interrupt it; 0 on success.
    static int sleep(unsigned long milliseconds);

    bool isCreated() const { return created; }
    bool isRunning() const { return running; }
    bool isDetached() const { return detached; }
    int getResult() const { return result; }

protected:
    virtual int run() = 0;

private:
    static void* threadFunc(void* object);

    // Written by the starting thread and the worker; atomics keep the hand-over defined.
    std::atomic<bool> created{false};
    std::atomic<bool> running{false};
    std::atomic<bool> detached{false};
    std::atomic<int> result{0};
    SynchEvent startEvent{false};
    pthread_t handle{};
};

} // namespace Tamrik
