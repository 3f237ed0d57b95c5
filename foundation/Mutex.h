#pragma once

#include <pthread.h>

namespace Tamrik {

// A normal (non-recursive) system mutex. Errors of the system calls raise Tamrik::Exception.
class Mutex {
public:
    Mutex();
    ~Mutex();
    Mutex(const Mutex&) = delete;
    Mutex& operator=(const Mutex&) = delete;

    void lock();
    void unlock();

private:
    pthread_mutex_t mutex;
};

// Locks on construction, unlocks on destruction.
class ScopedLock {
public:
    explicit ScopedLock(Mutex& mutex);
    ~ScopedLock() noexcept(false);
    ScopedLock(const ScopedLock&) = delete;
    ScopedLock& operator=(const ScopedLock&) = delete;

private:
    Mutex& mutex;
    bool locked = false;
};

} // namespace Tamrik
