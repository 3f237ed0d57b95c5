#pragma once

#include "host/fonts/FolderTimes.h"
#include "host/loop/FontFolderWatch.h"

#include <condition_variable>
#include <mutex>
#include <thread>

namespace Galley {

// The font folders watched by their nanosecond modification times, looked at every period
// on a thread of the watch's own. For batch mode: a run lives for milliseconds, and closing
// an inotify instance that watched folders makes the exiting process wait for a grace
// period of the kernel's (up to some 20 ms, longer than the fonts take to arrive) before
// the watches are freed. A font's arrival is seen within a period instead of at once.
//
// The thread keeps looking while the main thread is held elsewhere (a plug-in waiting for
// the font manager's answer): `onChangeSeen` runs on it as soon as a change is seen, and
// `onChange` on the loop once the loop turns.
class PollingFolderWatch : public FontFolderWatch {
public:
    // Throws std::runtime_error when the thread's signal to the loop cannot be set up.
    PollingFolderWatch(EventLoop& loop, std::function<void()> onChange,
                       std::function<void()> onChangeSeen, int periodMilliseconds);
    ~PollingFolderWatch() override;
    PollingFolderWatch(const PollingFolderWatch&) = delete;
    PollingFolderWatch& operator=(const PollingFolderWatch&) = delete;

    void watch(const std::vector<std::string>& folders) override;
    bool waitForChange(int milliseconds) const override;

private:
    void run();
    bool lookOnce();
    bool signalled(int milliseconds) const;
    void announce();

    EventLoop& loop_;
    std::function<void()> onChange_;
    std::function<void()> onChangeSeen_;
    const int periodMilliseconds_;
    int signal_ = -1; // an eventfd, readable from a change seen until it is announced
    EventLoop::SourceId source_ = 0;

    mutable std::mutex mutex_; // over the folders, their times and stopping
    std::condition_variable stopRequested_;
    bool stopping_ = false;
    std::vector<std::string> watched_;
    FolderTimes times_;
    std::thread thread_;
};

} // namespace Galley
