#include "host/loop/PollingFolderWatch.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <system_error>

namespace Galley {

PollingFolderWatch::PollingFolderWatch(EventLoop& loop, std::function<void()> onChange,
                                       std::function<void()> onChangeSeen, int periodMilliseconds)
    : loop_(loop), onChange_(std::move(onChange)), onChangeSeen_(std::move(onChangeSeen)),
      periodMilliseconds_(periodMilliseconds) {
    signal_ = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (signal_ < 0)
        throw std::runtime_error(std::string("cannot watch the font folders: eventfd: ") +
                                 std::strerror(errno));
    source_ = loop_.watchFd(signal_, POLLIN, [this] { announce(); });
    try {
        thread_ = std::thread([this] { run(); });
    } catch (const std::system_error& error) {
        // No watch half made: the loop must not keep a source that points at it.
        loop_.remove(source_);
        ::close(signal_);
        throw std::runtime_error(std::string("cannot watch the font folders: ") + error.what());
    }
}

PollingFolderWatch::~PollingFolderWatch() {
    {
        std::lock_guard<std::mutex> lock(mutex_);
        stopping_ = true;
    }
    stopRequested_.notify_all();
    thread_.join();
    loop_.remove(source_);
    ::close(signal_);
}

void PollingFolderWatch::watch(const std::vector<std::string>& folders) {
    std::vector<std::string> watched = foldersToWatch(folders);
    const std::timespec start = FileTimes::coarseNow();
    FolderTimes::Times now = FolderTimes::look(watched);
    std::lock_guard<std::mutex> lock(mutex_);
    watched_ = std::move(watched);
    times_ = FolderTimes();
    times_.takeIn(std::move(now), start);
}

void PollingFolderWatch::run() {
    std::unique_lock<std::mutex> lock(mutex_);
    for (;;) {
        stopRequested_.wait_for(lock, std::chrono::milliseconds(periodMilliseconds_),
                                [this] { return stopping_; });
        if (stopping_)
            return;
        lock.unlock();
        if (lookOnce()) {
            if (onChangeSeen_)
                onChangeSeen_();
            const std::uint64_t one = 1;
            ssize_t written = ::write(signal_, &one, sizeof one);
            (void)written; // full (it cannot be, short of 2^64 changes): already signalled
        }
        lock.lock();
    }
}

// True when the folders changed since the last look, which this one takes in. The folders
// are looked at outside the lock, so that watch() never waits for a slow file system.
bool PollingFolderWatch::lookOnce() {
    std::vector<std::string> watched;
    {
        std::lock_guard<std::mutex> lock(mutex_);
        watched = watched_;
    }
    const std::timespec start = FileTimes::coarseNow();
    FolderTimes::Times now = FolderTimes::look(watched);
    std::lock_guard<std::mutex> lock(mutex_);
    if (watched != watched_)
        return false; // watch() replaced the folders meanwhile: the next look is theirs
    const bool changed = times_.differ(now);
    times_.takeIn(std::move(now), start);
    return changed;
}

bool PollingFolderWatch::signalled(int milliseconds) const {
    pollfd ready{signal_, POLLIN, 0};
    return ::poll(&ready, 1, milliseconds) > 0;
}

void PollingFolderWatch::announce() {
    std::uint64_t count = 0;
    if (::read(signal_, &count, sizeof count) == static_cast<ssize_t>(sizeof count))
        onChange_();
}

// A change counts from the moment it is on disk, not from the thread's next look: a change
// seen but not yet announced, or one the thread has not looked at yet.
bool PollingFolderWatch::waitForChange(int milliseconds) const {
    const auto deadline =
        std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
    for (;;) {
        if (signalled(0))
            return true;
        {
            std::vector<std::string> watched;
            FolderTimes times;
            {
                std::lock_guard<std::mutex> lock(mutex_);
                watched = watched_;
                times = times_;
            }
            if (times.differ(FolderTimes::look(watched)))
                return true;
        }
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        if (left.count() <= 0)
            return false;
        if (signalled(static_cast<int>(std::min<long long>(left.count(), periodMilliseconds_))))
            return true;
    }
}

} // namespace Galley
