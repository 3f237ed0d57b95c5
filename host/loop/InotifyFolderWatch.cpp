#include "host/loop/InotifyFolderWatch.h"

#include <poll.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <set>
#include <stdexcept>

namespace Galley {

namespace {

constexpr std::uint32_t folderEvents = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO |
                                       IN_CLOSE_WRITE | IN_ATTRIB | IN_DELETE_SELF | IN_MOVE_SELF;

} // namespace

InotifyFolderWatch::InotifyFolderWatch(EventLoop& loop, std::function<void()> onChange)
    : loop_(loop), onChange_(std::move(onChange)) {
    fd_ = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (fd_ < 0)
        throw std::runtime_error(std::string("cannot watch the font folders: ") +
                                 std::strerror(errno));
    source_ = loop_.watchFd(fd_, POLLIN, [this] { drain(); });
}

InotifyFolderWatch::~InotifyFolderWatch() {
    loop_.remove(source_);
    close(fd_);
}

void InotifyFolderWatch::watch(const std::vector<std::string>& folders) {
    const auto wantedFolders = foldersToWatch(folders);
    const std::set<std::string> wanted(wantedFolders.begin(), wantedFolders.end());
    for (auto it = watches_.begin(); it != watches_.end();) {
        if (wanted.count(it->first)) {
            ++it;
            continue;
        }
        inotify_rm_watch(fd_, it->second);
        it = watches_.erase(it);
    }
    for (const auto& folder : wanted) {
        if (watches_.count(folder))
            continue;
        const int wd = inotify_add_watch(fd_, folder.c_str(), folderEvents | IN_ONLYDIR);
        if (wd >= 0)
            watches_[folder] = wd;
    }
}

bool InotifyFolderWatch::waitForChange(int milliseconds) const {
    pollfd pending{fd_, POLLIN, 0};
    return poll(&pending, 1, milliseconds) > 0;
}

void InotifyFolderWatch::drain() {
    // Every event means the same thing (look again), so they are only counted; an overflow
    // means events were lost, which is one more reason to look again.
    alignas(inotify_event) char buffer[16 * 1024];
    bool any = false;
    for (;;) {
        const ssize_t got = read(fd_, buffer, sizeof buffer);
        if (got <= 0)
            break;
        any = true;
    }
    if (any)
        onChange_();
}

} // namespace Galley
