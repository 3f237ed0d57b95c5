#include "foundation/SynchEvent.h"

#include "foundation/Exception.h"

#include <ctime>

namespace Tamrik {

SynchEvent::SynchEvent(bool autoReset) : autoReset(autoReset) {
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutex_init(&mutex, &attributes);
    pthread_mutexattr_destroy(&attributes);
    pthread_cond_init(&condition, nullptr);
}

SynchEvent::~SynchEvent() {
    close();
}

void SynchEvent::close() {
    if (closed) {
        return;
    }
    int oldState;
    pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &oldState);
    closed = true;
    pthread_mutex_destroy(&mutex);
    pthread_cond_destroy(&condition);
    pthread_setcancelstate(oldState, nullptr);
}

void SynchEvent::signal() {
    int oldState;
    pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &oldState);
    pthread_mutex_lock(&mutex);
    isSet = true;
    const int error =
        autoReset ? pthread_cond_signal(&condition) : pthread_cond_broadcast(&condition);
    if (error != 0) {
        pthread_mutex_unlock(&mutex);
        pthread_setcancelstate(oldState, nullptr);
        if (autoReset) {
            throw Exception("could not signal", "synchevent", 231, "");
        }
        throw Exception("could not broadcast", "synchevent", 240, "");
    }
    pthread_mutex_unlock(&mutex);
    pthread_setcancelstate(oldState, nullptr);
    pthread_testcancel();
}

void SynchEvent::reset() {
    int oldState;
    pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &oldState);
    pthread_mutex_lock(&mutex);
    isSet = false;
    pthread_mutex_unlock(&mutex);
    pthread_setcancelstate(oldState, nullptr);
}

bool SynchEvent::waitFor(unsigned long milliseconds) {
    int oldState;
    pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &oldState);
    pthread_mutex_lock(&mutex);
    timespec deadline;
    clock_gettime(CLOCK_REALTIME, &deadline);
    deadline.tv_sec += static_cast<time_t>(milliseconds / 1000);
    deadline.tv_nsec += static_cast<long>(milliseconds % 1000) * 1000000L;
    if (deadline.tv_nsec >= 1000000000L) {
        deadline.tv_sec += 1;
        deadline.tv_nsec -= 1000000000L;
    }
    int error = 0;
    while (!isSet && error == 0) {
        error = pthread_cond_timedwait(&condition, &mutex, &deadline);
    }
    const bool seen = isSet;
    if (seen && autoReset) {
        isSet = false;
    }
    pthread_mutex_unlock(&mutex);
    pthread_setcancelstate(oldState, nullptr);
    pthread_testcancel();
    return seen;
}

} // namespace Tamrik
