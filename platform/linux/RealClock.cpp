#include "platform/linux/RealClock.h"

#include <cerrno>
#include <ctime>

namespace Platform::Linux {

namespace {

constexpr std::uint64_t nanosecondsPerSecond = 1000000000u;
constexpr std::uint64_t ticksPerSecond = 60;

timespec now() {
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return time;
}

} // namespace

std::uint32_t RealClock::tickCount() {
    timespec time = now();
    std::uint64_t ticks =
        static_cast<std::uint64_t>(time.tv_sec) * ticksPerSecond +
        static_cast<std::uint64_t>(time.tv_nsec) * ticksPerSecond / nanosecondsPerSecond;
    return static_cast<std::uint32_t>(ticks);
}

void RealClock::delay(std::uint32_t ticks) {
    // An absolute deadline, so that signals interrupting the sleep do not stretch it.
    timespec deadline = now();
    std::uint64_t nanoseconds =
        static_cast<std::uint64_t>(ticks) * nanosecondsPerSecond / ticksPerSecond;
    deadline.tv_sec += static_cast<time_t>(nanoseconds / nanosecondsPerSecond);
    deadline.tv_nsec += static_cast<long>(nanoseconds % nanosecondsPerSecond);
    if (deadline.tv_nsec >= static_cast<long>(nanosecondsPerSecond)) {
        deadline.tv_sec += 1;
        deadline.tv_nsec -= static_cast<long>(nanosecondsPerSecond);
    }
    while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &deadline, nullptr) == EINTR) {
    }
}

std::uint32_t RealClock::dateTimeSeconds() {
    return static_cast<std::uint32_t>(now().tv_sec);
}

} // namespace Platform::Linux
