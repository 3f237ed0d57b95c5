// Both ways Galley watches its font folders see the same changes: what the font manager does
// to the folders (links, removals, a folder created), each seen within a short wait.
#include "host/loop/FontFolderWatch.h"
#include "host/loop/SdEventLoop.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace {

namespace fs = std::filesystem;
using Galley::FolderWatching;

class FontFolderWatchTest : public ::testing::TestWithParam<FolderWatching> {
protected:
    FontFolderWatchTest() {
        std::string pattern = (fs::temp_directory_path() / "galley-watch-XXXXXX").string();
        root_ = ::mkdtemp(pattern.data());
        fs::create_directories(root_ / "fonts");
        watch_ = Galley::FontFolderWatch::create(
            GetParam(), loop_, [this] { ++changes_; },
            [this] {
                // Reading ahead is for the time the loop is not turning: off its thread.
                if (std::this_thread::get_id() != loopThread_)
                    ++seenOffTheLoop_;
            });
        // The font manager's folder does not exist yet: its parent stands in for it.
        watch_->watch({(root_ / "fonts").string(), (root_ / "fonts/manager").string()});
        settle();
    }
    ~FontFolderWatchTest() override {
        watch_.reset();
        std::error_code ignored;
        fs::remove_all(root_, ignored);
    }

    // Turns the loop until a change was announced, for at most a second.
    bool announced() {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(1);
        while (changes_ == 0 && std::chrono::steady_clock::now() < deadline)
            loop_.iterate(10'000);
        const bool seen = changes_ > 0;
        changes_ = 0;
        return seen;
    }

    // Lets a folder changed within the kernel's last clock tick be looked at once more (the
    // polling watch does, since a second change in that tick would not move its time).
    void settle() {
        const auto until = std::chrono::steady_clock::now() + std::chrono::milliseconds(15);
        while (std::chrono::steady_clock::now() < until)
            loop_.iterate(5'000);
        changes_ = 0;
    }

    fs::path root_;
    const std::thread::id loopThread_ = std::this_thread::get_id();
    std::atomic<int> seenOffTheLoop_{0};
    Galley::SdEventLoop loop_;
    std::unique_ptr<Galley::FontFolderWatch> watch_;
    int changes_ = 0;
};

TEST_P(FontFolderWatchTest, EveryChangeTheFontManagerMakesIsAnnounced) {
    const fs::path fonts = root_ / "fonts";
    const std::vector<std::pair<const char*, std::function<void()>>> changes = {
        {"a face linked", [&] { fs::create_symlink("/nowhere/a.ttf", fonts / "a.ttf"); }},
        {"a second one at once", [&] { fs::create_symlink("/nowhere/b.ttf", fonts / "b.ttf"); }},
        {"a face removed", [&] { fs::remove(fonts / "a.ttf"); }},
        {"the manager's folder created", [&] { fs::create_directory(fonts / "manager"); }},
    };
    for (const auto& [what, change] : changes) {
        EXPECT_FALSE(watch_->waitForChange(0)) << "before: " << what;
        change();
        EXPECT_TRUE(watch_->waitForChange(500)) << what;
        EXPECT_TRUE(announced()) << what;
        // As Galley does after taking a change in: the folders again, the new one itself.
        watch_->watch({fonts.string(), (fonts / "manager").string()});
        settle();
    }
    std::ofstream(fonts / "manager" / "c.ttf") << "font";
    EXPECT_TRUE(announced()) << "a face in the folder that was created";
    // Only the polling watch looks on a thread of its own, and tells of each change there.
    EXPECT_EQ(seenOffTheLoop_ >= 5, GetParam() == FolderWatching::polling) << seenOffTheLoop_;
}

TEST_P(FontFolderWatchTest, NothingChangedNothingAnnounced) {
    EXPECT_FALSE(watch_->waitForChange(20));
    const auto until = std::chrono::steady_clock::now() + std::chrono::milliseconds(20);
    while (std::chrono::steady_clock::now() < until)
        loop_.iterate(5'000);
    EXPECT_EQ(changes_, 0);
}

INSTANTIATE_TEST_SUITE_P(BothWatches, FontFolderWatchTest,
                         ::testing::Values(FolderWatching::inotify, FolderWatching::polling),
                         [](const auto& info) {
                             return info.param == FolderWatching::inotify ? "Inotify" : "Polling";
                         });

} // namespace
