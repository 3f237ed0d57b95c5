#include "platform/linux/notify.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <thread>
#include <vector>

namespace {

// Posters on several threads against a checker on another: no posting is lost from the
// counter, and the checker sees the last one.
TEST(NotifyThreads, ConcurrentPostsAreAllCountedAndSeen) {
    char runtime[] = "/tmp/vlm-notify-threads-XXXXXX";
    ASSERT_NE(mkdtemp(runtime), nullptr);
    setenv("XDG_RUNTIME_DIR", runtime, 1);
    int token = 0, changed = 0;
    ASSERT_EQ(notify_register_check("busy", &token), NOTIFY_STATUS_OK);
    notify_check(token, &changed);

    std::atomic<bool> stop{false};
    std::atomic<int> seen{0};
    std::thread checker([&] {
        for (int check = 0; !stop; seen += check)
            EXPECT_EQ(notify_check(token, &check), NOTIFY_STATUS_OK);
    });
    std::vector<std::thread> posters(4);
    for (auto& poster : posters)
        poster = std::thread([] {
            for (int n = 0; n < 250; ++n)
                notify_post("busy");
        });
    for (auto& poster : posters)
        poster.join();
    stop = true;
    checker.join();
    notify_check(token, &changed);
    EXPECT_TRUE(seen > 0 || changed) << "the checker saw the postings";

    std::uint64_t counter = 0;
    std::ifstream(std::string(runtime) + "/notify/busy").read(reinterpret_cast<char*>(&counter), 8);
    EXPECT_EQ(counter, 4u * 250u);
    notify_cancel(token);
    std::filesystem::remove_all(runtime);
}

} // namespace
