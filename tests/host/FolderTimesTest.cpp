// Which folders count as changed between two looks, with file times only as fine as the
// kernel's clock tick.
#include "host/fonts/FolderTimes.h"

#include <gtest/gtest.h>

namespace {

using Galley::FolderTimes;
using Names = std::set<std::string>;

std::timespec at(long seconds, long nanoseconds = 0) {
    return {seconds, nanoseconds};
}

TEST(FolderTimes, ChangedFoldersBetweenTwoLooks) {
    struct Case {
        const char* what;
        FolderTimes::Times takenIn;
        std::timespec lookBegan; // of the look that was taken in
        FolderTimes::Times now;
        Names changed;
        bool differ;
    };
    const std::vector<Case> cases = {
        {"nothing moved",
         {{"a", at(10)}, {"b", at(11)}},
         at(20),
         {{"a", at(10)}, {"b", at(11)}},
         {},
         false},
        {"one moved",
         {{"a", at(10)}, {"b", at(11)}},
         at(20),
         {{"a", at(10)}, {"b", at(21)}},
         {"b"},
         true},
        {"changed within the tick of the look: looked at once more",
         {{"a", at(10)}, {"b", at(20, 5)}},
         at(20),
         {{"a", at(10)}, {"b", at(20, 5)}},
         {"b"},
         true},
        {"a folder that appeared",
         {{"a", at(10)}},
         at(20),
         {{"a", at(10)}, {"b", at(15)}},
         {"b"},
         true},
        {"a folder no longer listed",
         {{"a", at(10)}, {"b", at(11)}},
         at(20),
         {{"a", at(10)}},
         {},
         true},
        {"a folder gone (time zero)",
         {{"a", at(10)}},
         at(20),
         {{"a", std::timespec{}}},
         {"a"},
         true},
    };
    for (const auto& c : cases) {
        FolderTimes times;
        times.takeIn(c.takenIn, c.lookBegan);
        EXPECT_EQ(times.changedIn(c.now), c.changed) << c.what;
        EXPECT_EQ(times.differ(c.now), c.differ) << c.what;
    }
}

TEST(FolderTimes, AFolderIsLookedAtOnceMoreOnlyOnce) {
    FolderTimes times;
    times.takeIn({{"a", at(20, 5)}}, at(20)); // taken in within the tick it changed in
    EXPECT_TRUE(times.differ({{"a", at(20, 5)}}));
    times.takeIn({{"a", at(20, 5)}}, at(21)); // looked at again, unchanged
    EXPECT_FALSE(times.differ({{"a", at(20, 5)}}));
    // Unchanged, even with a time from the future (a clock set back): not looked at again.
    times.takeIn({{"a", at(99)}}, at(30));
    times.takeIn({{"a", at(99)}}, at(31));
    EXPECT_FALSE(times.differ({{"a", at(99)}}));
}

} // namespace
