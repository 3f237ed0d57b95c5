#pragma once

#include <ctime>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace Galley {

// File times as the kernel keeps them, for checks of whether a file or folder changed.
namespace FileTimes {

bool same(const std::timespec& a, const std::timespec& b);
bool earlier(const std::timespec& a, const std::timespec& b);

// Now, on the clock file times come from. The kernel stamps them with its tick-coarse
// clock, so a change made just after a fine-grained "now" can carry an earlier time.
std::timespec coarseNow();

} // namespace FileTimes

// The nanosecond modification times of some folders, as last taken in, and which of them
// changed since. Two changes within one clock tick carry the same time, so a folder whose
// time was not earlier than the start of the look that took it in is looked at once more.
class FolderTimes {
public:
    using Times = std::map<std::string, std::timespec>; // zero for a folder that is gone

    // The folders' times now.
    static Times look(const std::vector<std::string>& folders);

    // The folders of `now` that moved since the last take-in or are to be looked at once
    // more; a folder that was not taken in counts as moved.
    std::set<std::string> changedIn(const Times& now) const;
    // Whether the folders differ from those taken in, or any is to be looked at once more.
    bool differ(const Times& now) const;
    // `now` becomes what was taken in; `since` is when the look that produced it began.
    void takeIn(Times now, const std::timespec& since);

    const Times& times() const { return times_; }

private:
    Times times_;
    std::set<std::string> lookAgain_;
};

} // namespace Galley
