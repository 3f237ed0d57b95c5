#pragma once

#include "host/loop/EventLoop.h"

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace Galley {

// Watches the font folders with inotify from the event loop. Any change in a watched
// folder (a font linked, removed, a folder created) calls `onChange` once per wait, after
// all pending events were drained. A folder that does not exist yet is watched through its
// nearest existing parent, so that its creation is seen too. On queue overflow every
// folder counts as changed.
class FontFolderWatch {
public:
    // Throws std::runtime_error when inotify cannot be set up.
    FontFolderWatch(EventLoop& loop, std::function<void()> onChange);
    ~FontFolderWatch();
    FontFolderWatch(const FontFolderWatch&) = delete;
    FontFolderWatch& operator=(const FontFolderWatch&) = delete;

    // Watches exactly these folders (and the parents of missing ones) from now on.
    void watch(const std::vector<std::string>& folders);
    std::size_t watchCount() const { return watches_.size(); }

    // Waits up to `milliseconds` for a change without consuming it; true when one is
    // pending. For font-list updates that poll: they sleep here instead of spinning.
    bool waitForChange(int milliseconds) const;

private:
    void drain();

    EventLoop& loop_;
    std::function<void()> onChange_;
    int fd_ = -1;
    EventLoop::SourceId source_ = 0;
    std::map<std::string, int> watches_; // folder -> watch descriptor
};

} // namespace Galley
