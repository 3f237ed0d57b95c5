#include "host/fonts/FolderTimes.h"

#include <sys/stat.h>

namespace Galley {

bool FileTimes::same(const std::timespec& a, const std::timespec& b) {
    return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

bool FileTimes::earlier(const std::timespec& a, const std::timespec& b) {
    return a.tv_sec < b.tv_sec || (a.tv_sec == b.tv_sec && a.tv_nsec < b.tv_nsec);
}

std::timespec FileTimes::coarseNow() {
    std::timespec now{};
    clock_gettime(CLOCK_REALTIME_COARSE, &now);
    return now;
}

FolderTimes::Times FolderTimes::look(const std::vector<std::string>& folders) {
    Times times;
    for (const auto& folder : folders) {
        struct stat info {};
        // A folder that does not exist yet counts as time zero, so that its creation is a
        // change.
        times[folder] = ::stat(folder.c_str(), &info) == 0 ? info.st_mtim : std::timespec{};
    }
    return times;
}

std::set<std::string> FolderTimes::changedIn(const Times& now) const {
    std::set<std::string> changed;
    for (const auto& [folder, time] : now) {
        const auto before = times_.find(folder);
        if (before == times_.end() || !FileTimes::same(before->second, time) ||
            lookAgain_.count(folder))
            changed.insert(folder);
    }
    return changed;
}

bool FolderTimes::differ(const Times& now) const {
    return now.size() != times_.size() || !changedIn(now).empty();
}

void FolderTimes::takeIn(Times now, const std::timespec& since) {
    std::set<std::string> again;
    for (const auto& [folder, time] : now) {
        const auto before = times_.find(folder);
        const bool moved = before == times_.end() || !FileTimes::same(before->second, time);
        if (moved && !FileTimes::earlier(time, since))
            again.insert(folder);
    }
    times_ = std::move(now);
    lookAgain_ = std::move(again);
}

} // namespace Galley
