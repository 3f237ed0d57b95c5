#pragma once

#include "host/fonts/FolderTimes.h"
#include "host/loop/FontFolderWatch.h"

namespace Galley {

// The font folders watched by their nanosecond modification times, looked at every period
// from a timer of the loop. For batch mode: a run lives for milliseconds, and closing an
// inotify instance that watched folders makes the exiting process wait for a grace period
// of the kernel's (up to some 20 ms, longer than the fonts take to arrive) before the
// watches are freed. A font's arrival is seen within a period instead of at once.
class PollingFolderWatch : public FontFolderWatch {
public:
    PollingFolderWatch(EventLoop& loop, std::function<void()> onChange, int periodMilliseconds);
    ~PollingFolderWatch() override;
    PollingFolderWatch(const PollingFolderWatch&) = delete;
    PollingFolderWatch& operator=(const PollingFolderWatch&) = delete;

    void watch(const std::vector<std::string>& folders) override;
    bool waitForChange(int milliseconds) const override;

private:
    void tick();

    EventLoop& loop_;
    std::function<void()> onChange_;
    int periodMilliseconds_;
    EventLoop::SourceId timer_ = 0;
    std::vector<std::string> watched_;
    FolderTimes times_;
};

} // namespace Galley
