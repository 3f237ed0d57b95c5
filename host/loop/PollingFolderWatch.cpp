#include "host/loop/PollingFolderWatch.h"

#include <algorithm>
#include <chrono>
#include <thread>

namespace Galley {

PollingFolderWatch::PollingFolderWatch(EventLoop& loop, std::function<void()> onChange,
                                       int periodMilliseconds)
    : loop_(loop), onChange_(std::move(onChange)), periodMilliseconds_(periodMilliseconds) {
    timer_ = loop_.addTimer([this] { tick(); });
}

PollingFolderWatch::~PollingFolderWatch() {
    loop_.remove(timer_);
}

void PollingFolderWatch::watch(const std::vector<std::string>& folders) {
    watched_ = foldersToWatch(folders);
    times_ = FolderTimes();
    times_.takeIn(FolderTimes::look(watched_), FileTimes::coarseNow());
    loop_.armTimer(timer_, periodMilliseconds_ * 1000ULL);
}

void PollingFolderWatch::tick() {
    loop_.armTimer(timer_, periodMilliseconds_ * 1000ULL);
    const std::timespec start = FileTimes::coarseNow();
    FolderTimes::Times now = FolderTimes::look(watched_);
    const bool changed = times_.differ(now);
    times_.takeIn(std::move(now), start);
    if (changed)
        onChange_();
}

bool PollingFolderWatch::waitForChange(int milliseconds) const {
    const auto deadline =
        std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
    for (;;) {
        if (times_.differ(FolderTimes::look(watched_)))
            return true;
        const auto left = deadline - std::chrono::steady_clock::now();
        if (left <= std::chrono::steady_clock::duration::zero())
            return false;
        std::this_thread::sleep_for(std::min<std::chrono::steady_clock::duration>(
            left, std::chrono::milliseconds(periodMilliseconds_)));
    }
}

} // namespace Galley
