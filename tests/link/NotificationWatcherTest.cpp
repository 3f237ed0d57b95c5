#include "LinkFixture.h"

#include "link/MacVLMNotifyHandler.h"
#include "link/NotificationDaemon.h"

#include <gmock/gmock.h>

#include <stdexcept>

namespace {

class Watcher : public VLMTest::LinkTest {
protected:
    int tokenOf(const std::string& name) { return platform.notifications.tokenOf(name); }

    // Counts the firings queued for a name, consuming them.
    int drain(const std::string& name) {
        int fired = 0;
        while (daemon.hasFired(name)) {
            ++fired;
        }
        return fired;
    }

    // Returns once the reading thread has finished a check that began after this call.
    void waitForFreshCheck(int token) {
        const std::uint64_t done = platform.notifications.checksDone(token);
        ASSERT_TRUE(platform.notifications.waitForChecks(token, done + 2));
    }

    BSDNotification::Daemon daemon;
};

// The first check after registration queues one message of its own.
TEST_F(Watcher, PostsCountOncePerPollingPeriod) {
    ASSERT_TRUE(daemon.addListener("a"));
    const int token = tokenOf("a");
    waitForFreshCheck(token);
    ASSERT_EQ(drain("a"), 1);
    EXPECT_FALSE(daemon.hasFired("unknown"));

    platform.notifications.holdChecks();
    for (int i = 0; i < 3; ++i) {
        platform.notifications.post("a");
    }
    platform.notifications.releaseChecks();
    waitForFreshCheck(token);
    EXPECT_EQ(drain("a"), 1) << "three posts in one period";

    for (int i = 0; i < 3; ++i) {
        platform.notifications.post("a");
        waitForFreshCheck(token);
    }
    EXPECT_EQ(drain("a"), 3) << "three posts in three periods";
}

TEST_F(Watcher, EmptyNameTakesOneFiringOfAnyWatchedName) {
    EXPECT_FALSE(daemon.hasFired(""));
    ASSERT_TRUE(daemon.addListener("a"));
    ASSERT_TRUE(daemon.addListener("b"));
    waitForFreshCheck(tokenOf("a"));
    waitForFreshCheck(tokenOf("b"));
    EXPECT_TRUE(daemon.hasFired(""));
    EXPECT_TRUE(daemon.hasFired("b")); // the first call took a's firing only
    EXPECT_FALSE(daemon.hasFired(""));
}

TEST_F(Watcher, ReplacingEndsTheOldReaderAndRemovingCancelsTheRegistration) {
    ASSERT_TRUE(daemon.addListener("a"));
    const int first = tokenOf("a");
    ASSERT_TRUE(daemon.addListener("a"));
    ASSERT_NE(tokenOf("a"), first);
    const std::uint64_t firstChecks = platform.notifications.checksDone(first);
    waitForFreshCheck(tokenOf("a"));
    EXPECT_EQ(platform.notifications.checksDone(first), firstChecks);

    ASSERT_TRUE(daemon.addListener("b"));
    daemon.removeListener("unknown");
    EXPECT_EQ(daemon.watchedCount(), 2u);
    daemon.removeListener("b");
    EXPECT_FALSE(daemon.isWatching("b"));
    EXPECT_EQ(tokenOf("b"), -1);
    daemon.removeListener("");
    EXPECT_EQ(daemon.watchedCount(), 0u);
}

TEST_F(Watcher, RegistrationFailureRaisesAndWatchesNothing) {
    platform.notifications.failRegistrations(true);
    EXPECT_THAT([this] { daemon.addListener("a"); },
                testing::ThrowsMessage<std::runtime_error>(
                    testing::StrEq("token could not be registered")));
    EXPECT_EQ(daemon.watchedCount(), 0u);
}

// Events FSBC and FFSC and library changes become font changes; other events are ignored.
TEST_F(Watcher, TransportTurnsEventsAndLibraryChangesIntoFontChanges) {
    VLM::MacVLMNotifyHandler handler;
    std::vector<std::string> heard;
    VLMTest::Listener listener(heard, "");
    handler.registerNotifer(&listener);
    handler.start();
    handler.start(); // the watcher is made once
    ASSERT_TRUE(handler.isWatchingLibrary());
    EXPECT_TRUE(platform.appEvents.hasHandler("VLM4", "****"));

    const int token = tokenOf("org.vellumine.Vellumine.FontLibraryChanged");
    ASSERT_NE(token, -1);
    waitForFreshCheck(token);
    handler.push();
    handler.push(); // one firing, one command
    std::string reply;
    for (const char* id : {"FSBC", "XXXX", "FFSC"}) {
        EXPECT_EQ(platform.appEvents.deliver({"VLM4", id, ""}, reply), Platform::Status::ok);
    }
    EXPECT_EQ(reply, "");
    EXPECT_EQ(heard, std::vector<std::string>(3, "<cmd cmd=\"fontChanged\"></cmd>"));

    handler.end();
    EXPECT_FALSE(handler.isWatchingLibrary());
    EXPECT_EQ(platform.appEvents.deliver({"VLM4", "FSBC", ""}, reply),
              Platform::Status::notHandled);
}

} // namespace
