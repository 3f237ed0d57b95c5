#include "foundation/Thread.h"

#include <cerrno>
#include <ctime>
#include <sched.h>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/asan_interface.h>
#endif

namespace Tamrik {

namespace {

constexpr unsigned long startPollMilliseconds = 250;

// Cancellation unwinds run()'s frames without AddressSanitizer noticing, which would leave
// their red zones poisoned for the thread's own exit code to trip over. Everything below
// this frame is dead by now.
void forgetCancelledFrames(void*) {
#if defined(__SANITIZE_ADDRESS__)
    pthread_attr_t attributes;
    if (pthread_getattr_np(pthread_self(), &attributes) != 0) {
        return;
    }
    void* stackLow = nullptr;
    size_t stackSize = 0;
    pthread_attr_getstack(&attributes, &stackLow, &stackSize);
    pthread_attr_destroy(&attributes);
    char* low = static_cast<char*>(stackLow);
    char* here = static_cast<char*>(__builtin_frame_address(0));
    if (low != nullptr && here > low) {
        ASAN_UNPOISON_MEMORY_REGION(low, static_cast<size_t>(here - low));
    }
#endif
}

} // namespace

Thread::Thread() = default;

Thread::~Thread() {
    destroy();
    startEvent.signal();
    startEvent.close();
}

bool Thread::start(bool detach, int priority) {
    if (running) {
        return false;
    }
    detached = false;
    if (created) {
        destroy();
    }
    // The start event stays set after a start; a restarted thread must wait for this
    // start's bookkeeping, not run on the previous signal.
    startEvent.reset();
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setdetachstate(&attributes,
                                detach ? PTHREAD_CREATE_DETACHED : PTHREAD_CREATE_JOINABLE);
    if (priority != -1) {
        pthread_attr_setinheritsched(&attributes, PTHREAD_EXPLICIT_SCHED);
        sched_param parameters{};
        parameters.sched_priority = priority;
        pthread_attr_setschedparam(&attributes, &parameters);
        pthread_attr_setschedpolicy(&attributes, SCHED_RR);
    }
    const int error = pthread_create(&handle, &attributes, &Thread::threadFunc, this);
    pthread_attr_destroy(&attributes);
    if (error != 0) {
        return false;
    }
    detached = detach;
    running = true;
    created = true;
    startEvent.signal();
    return true;
}

void* Thread::threadFunc(void* object) {
    auto* self = static_cast<Thread*>(object);
    while (!self->startEvent.waitFor(startPollMilliseconds)) {
    }
    pthread_cleanup_push(forgetCancelledFrames, nullptr);
    self->result = self->run();
    pthread_cleanup_pop(0);
    self->running = false;
    return nullptr;
}

bool Thread::destroy() {
    if (!created) {
        return false;
    }
    if (!running) {
        // run() has returned and the thread is on its way out: it is reaped, not cancelled,
        // since a cancellation racing the thread's own exit gains nothing. A finished
        // detached thread has reaped itself, and its handle may no longer be used.
        if (!detached) {
            pthread_join(handle, nullptr);
        }
        created = false;
        return true;
    }
    const int cancelError = pthread_cancel(handle);
    if (!detached) {
        pthread_join(handle, nullptr);
    }
    if (cancelError != 0) {
        return false;
    }
    running = false;
    created = false;
    return true;
}

bool Thread::join() {
    if (!created || detached) {
        return false;
    }
    const int error = pthread_join(handle, nullptr);
    if (error != 0 && error != ESRCH) {
        return false;
    }
    running = false;
    created = false;
    return true;
}

int Thread::sleep(unsigned long milliseconds) {
    timespec wanted{static_cast<time_t>(milliseconds / 1000),
                    static_cast<long>(milliseconds % 1000) * 1000000L};
    timespec remaining{};
    int status;
    while ((status = nanosleep(&wanted, &remaining)) != 0 && errno == EINTR) {
        wanted = remaining;
    }
    return status;
}

} // namespace Tamrik
