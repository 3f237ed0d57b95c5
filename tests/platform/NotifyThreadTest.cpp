#include "platform/linux/notify.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

// Posters on several threads against a checker on another: no posting is lost from the
// counter, and the checker sees the last one.
TEST(NotifyThreads, ConcurrentPostsAreAllCountedAndSeen) {
    char pattern[] = "/tmp/vlm-notify-threads-XXXXXX";
    ASSERT_NE(mkdtemp(pattern), nullptr);
    setenv("XDG_RUNTIME_DIR", pattern, 1);

    int token = 0;
    ASSERT_EQ(notify_register_check("busy", &token), NOTIFY_STATUS_OK);
    int changed = 0;
    notify_check(token, &changed);

    std::atomic<bool> stop{false};
    std::atomic<int> seen{0};
    std::thread checker([&] {
        while (!stop.load()) {
            int check = 0;
            if (notify_check(token, &check) == NOTIFY_STATUS_OK && check) {
                seen.fetch_add(1);
            }
        }
    });
    constexpr int posters = 4;
    constexpr int postsEach = 250;
    std::vector<std::thread> threads;
    for (int i = 0; i < posters; ++i) {
        threads.emplace_back([] {
            for (int n = 0; n < postsEach; ++n) {
                notify_post("busy");
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    stop = true;
    checker.join();
    notify_check(token, &changed);
    EXPECT_TRUE(seen.load() > 0 || changed);

    int counter = 0;
    ASSERT_EQ(notify_register_check("busy", &counter), NOTIFY_STATUS_OK);
    FILE* file = std::fopen((std::string(pattern) + "/notify/busy").c_str(), "rb");
    ASSERT_NE(file, nullptr);
    std::uint64_t value = 0;
    ASSERT_EQ(std::fread(&value, sizeof value, 1, file), 1u);
    std::fclose(file);
    EXPECT_EQ(value, static_cast<std::uint64_t>(posters * postsEach));

    notify_cancel(token);
    notify_cancel(counter);
    std::filesystem::remove_all(pattern);
}

} // namespace
