#include "host/loop/PollingFolderWatch.h"

#include "foundation/FileTimes.h"

#include <sys/stat.h>

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
    seen_.clear();
    for (const auto& folder : foldersToWatch(folders))
        seen_[folder] = {};
    takeIn();
    loop_.armTimer(timer_, periodMilliseconds_ * 1000ULL);
}

PollingFolderWatch::Times PollingFolderWatch::look() const {
    Times times;
    for (const auto& [folder, before] : seen_) {
        struct stat info {};
        times[folder] = ::stat(folder.c_str(), &info) == 0 ? info.st_mtim : std::timespec{};
    }
    return times;
}

bool PollingFolderWatch::changed() const {
    const Times now = look();
    return lookAgain_ ||
           !std::equal(now.begin(), now.end(), seen_.begin(), [](const auto& a, const auto& b) {
               return FileTimes::same(a.second, b.second);
           });
}

bool PollingFolderWatch::takeIn() {
    const std::timespec start = FileTimes::coarseNow();
    Times now = look();
    bool moved = lookAgain_;
    lookAgain_ = false;
    for (const auto& [folder, time] : now) {
        const auto before = seen_.find(folder);
        if (before != seen_.end() && FileTimes::same(before->second, time))
            continue;
        moved = true;
        lookAgain_ = lookAgain_ || !FileTimes::earlier(time, start);
    }
    seen_ = std::move(now);
    return moved;
}

void PollingFolderWatch::tick() {
    loop_.armTimer(timer_, periodMilliseconds_ * 1000ULL);
    if (takeIn())
        onChange_();
}

bool PollingFolderWatch::waitForChange(int milliseconds) const {
    const auto deadline =
        std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
    for (;;) {
        if (changed())
            return true;
        const auto left = deadline - std::chrono::steady_clock::now();
        if (left <= std::chrono::steady_clock::duration::zero())
            return false;
        std::this_thread::sleep_for(std::min<std::chrono::steady_clock::duration>(
            left, std::chrono::milliseconds(periodMilliseconds_)));
    }
}

} // namespace Galley
