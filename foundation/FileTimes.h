#pragma once

#include <ctime>

// File times as the kernel keeps them, for checks of whether a file or folder changed.
namespace FileTimes {

inline bool same(const std::timespec& a, const std::timespec& b) {
    return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

inline bool earlier(const std::timespec& a, const std::timespec& b) {
    return a.tv_sec < b.tv_sec || (a.tv_sec == b.tv_sec && a.tv_nsec < b.tv_nsec);
}

// Now, on the clock file times come from. The kernel stamps them with its tick-coarse
// clock, so a change made just after a fine-grained "now" can carry an earlier time; and
// two changes within one tick carry the same time, so a folder whose time is not earlier
// than this "now" may still change without its time showing it.
inline std::timespec coarseNow() {
    std::timespec now{};
    clock_gettime(CLOCK_REALTIME_COARSE, &now);
    return now;
}

} // namespace FileTimes
