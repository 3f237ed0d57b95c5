#pragma once

#include "host/loop/FontFolderWatch.h"

#include <map>

namespace Galley {

// The font folders watched with inotify: a change is seen the moment it happens. Events are
// drained all at once, so a burst of links is one change; on queue overflow every folder
// counts as changed.
class InotifyFolderWatch : public FontFolderWatch {
public:
    // Throws std::runtime_error when inotify cannot be set up.
    InotifyFolderWatch(EventLoop& loop, std::function<void()> onChange);
    ~InotifyFolderWatch() override;
    InotifyFolderWatch(const InotifyFolderWatch&) = delete;
    InotifyFolderWatch& operator=(const InotifyFolderWatch&) = delete;

    void watch(const std::vector<std::string>& folders) override;
    bool waitForChange(int milliseconds) const override;

private:
    void drain();

    EventLoop& loop_;
    std::function<void()> onChange_;
    int fd_ = -1;
    EventLoop::SourceId source_ = 0;
    std::map<std::string, int> watches_; // folder -> watch descriptor
};

} // namespace Galley
