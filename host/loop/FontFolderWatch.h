#pragma once

#include "host/loop/EventLoop.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace Galley {

// How Galley learns that its font folders changed.
enum class FolderWatching {
    off,     // only when the font list is updated (tests that drive changes themselves)
    inotify, // told by the kernel the moment it happens (the window)
    polling, // the folders' times, looked at every few milliseconds (batch mode)
};

// Watches the font folders from the event loop. Any change in a watched folder (a font
// linked, removed, a folder created) calls `onChange` once per turn of the loop. A folder
// that does not exist yet is watched through its nearest existing parent, so that its
// creation is seen too.
class FontFolderWatch {
public:
    virtual ~FontFolderWatch() = default;

    // Null for FolderWatching::off. Throws std::runtime_error when the watch cannot be set up.
    // A watch that looks on a thread of its own (polling) also calls `onChangeSeen` there, at
    // once, before `onChange` is called on the loop; it must be safe to call from any thread.
    static std::unique_ptr<FontFolderWatch> create(FolderWatching how, EventLoop& loop,
                                                   std::function<void()> onChange,
                                                   std::function<void()> onChangeSeen = {});

    // Watches exactly these folders (and the parents of missing ones) from now on.
    virtual void watch(const std::vector<std::string>& folders) = 0;

    // Waits up to `milliseconds` for a change without consuming it; true when one is
    // pending. For font-list updates that poll: they sleep here instead of spinning.
    virtual bool waitForChange(int milliseconds) const = 0;
};

// The folder itself when it exists, else its nearest existing parent; empty when none.
std::string existingFolderFor(const std::string& folder);

// The folders to watch for `folders`: each, or its nearest existing parent; sorted, once.
std::vector<std::string> foldersToWatch(const std::vector<std::string>& folders);

} // namespace Galley
