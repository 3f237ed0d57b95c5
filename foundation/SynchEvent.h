#pragma once

#include <pthread.h>

namespace Tamrik {

// A settable event over a condition variable. A manual-reset event stays set once
// signalled; an auto-reset event is cleared by the waiter that sees it.
class SynchEvent {
public:
    explicit SynchEvent(bool autoReset);
    ~SynchEvent();
    SynchEvent(const SynchEvent&) = delete;
    SynchEvent& operator=(const SynchEvent&) = delete;

    void signal();
    // Clears the event, so that a manual-reset event can be waited on anew.
    void reset();
    // Waits up to `milliseconds` for the event; true when it was seen set. Runs with
    // cancellation disabled while the mutex is held, then offers a cancellation point.
    bool waitFor(unsigned long milliseconds);
    // Releases the system objects; the destructor calls it when not done before.
    void close();

private:
    bool autoReset;
    bool isSet = false;
    bool closed = false;
    pthread_cond_t condition;
    pthread_mutex_t mutex; // recursive
};

} // namespace Tamrik
