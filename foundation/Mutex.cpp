#include "foundation/Mutex.h"

#include "foundation/Exception.h"
#include "foundation/SystemError.h"

#include <cerrno>

namespace Tamrik {

Mutex::Mutex() {
    pthread_mutex_init(&mutex, nullptr);
}

Mutex::~Mutex() {
    pthread_mutex_destroy(&mutex);
}

void Mutex::lock() {
    const int error = pthread_mutex_lock(&mutex);
    switch (error) {
    case 0:
        return;
    case EINVAL:
        throw Exception("Mutex: waiting on invalid mutex", "mutex", 206, "");
    case EAGAIN:
        throw Exception("Mutex: the maximum number of recursive locks has been exceeded", "mutex",
                        207, "");
    case EDEADLK:
        throw Exception("Mutex: deadlock detected", "mutex", 208, "");
    case EPERM:
        throw Exception("Mutex: tried", "mutex", 209, "");
    default:
        throw Exception("Mutex: unexpected error: " + describeSystemError(error), "mutex", 210, "");
    }
}

void Mutex::unlock() {
    const int error = pthread_mutex_unlock(&mutex);
    switch (error) {
    case 0:
        return;
    case EINVAL:
        throw Exception("Mutex: waiting on invalid mutex", "mutex", 231, "");
    case EAGAIN:
        throw Exception("Mutex: the maximum number of recursive locks has been exceeded", "mutex",
                        232, "");
    case EPERM:
        throw Exception("Mutex: tried to unlock unlocked mutex", "mutex", 233, "");
    default:
        throw Exception("Mutex: unexpected error: " + describeSystemError(error), "mutex", 234, "");
    }
}

ScopedLock::ScopedLock(Mutex& mutex) : mutex(mutex) {
    mutex.lock();
    locked = true;
}

ScopedLock::~ScopedLock() noexcept(false) {
    if (locked) {
        locked = false;
        mutex.unlock();
    }
}

} // namespace Tamrik
