#include "LinkFixture.h"

#include "link/MacVLMNotifyHandler.h"
#include "link/NotificationDaemon.h"
#include "link/VLMChangeNotifier.h"

#include <stdexcept>

namespace {

const std::string libraryChanged = "org.vellumine.Vellumine.FontLibraryChanged";

class Watcher : public VLMTest::LinkTest {
protected:
    VLMTest::FakeNamedNotifications& notifications() { return platform.notifications; }

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
        const std::uint64_t done = notifications().checksDone(token);
        ASSERT_TRUE(notifications().waitForChecks(token, done + 2));
    }

    BSDNotification::Daemon daemon;
};

TEST_F(Watcher, FirstCheckAfterRegistrationQueuesOneMessage) {
    ASSERT_TRUE(daemon.addListener("a"));
    const int token = notifications().tokenOf("a");
    ASSERT_TRUE(notifications().waitForChecks(token, 3));
    EXPECT_TRUE(daemon.hasFired("a"));
    EXPECT_FALSE(daemon.hasFired("a"));
    EXPECT_FALSE(daemon.hasFired("unknown"));
}

TEST_F(Watcher, PostsWithinOnePollingPeriodCountOnce) {
    ASSERT_TRUE(daemon.addListener("a"));
    const int token = notifications().tokenOf("a");
    waitForFreshCheck(token);
    ASSERT_EQ(drain("a"), 1);

    notifications().holdChecks();
    for (int i = 0; i < 3; ++i) {
        notifications().post("a");
    }
    notifications().releaseChecks();
    waitForFreshCheck(token);
    EXPECT_EQ(drain("a"), 1);
}

TEST_F(Watcher, PostsInSeparatePeriodsCountEach) {
    ASSERT_TRUE(daemon.addListener("a"));
    const int token = notifications().tokenOf("a");
    waitForFreshCheck(token);
    ASSERT_EQ(drain("a"), 1);

    for (int i = 0; i < 3; ++i) {
        notifications().post("a");
        waitForFreshCheck(token);
    }
    EXPECT_TRUE(daemon.hasFired("a"));
    EXPECT_TRUE(daemon.hasFired("a"));
    EXPECT_TRUE(daemon.hasFired("a"));
    EXPECT_FALSE(daemon.hasFired("a"));
}

TEST_F(Watcher, EmptyNameTakesOneFiringOfAnyWatchedName) {
    EXPECT_FALSE(daemon.hasFired(""));
    ASSERT_TRUE(daemon.addListener("a"));
    ASSERT_TRUE(daemon.addListener("b"));
    waitForFreshCheck(notifications().tokenOf("a"));
    waitForFreshCheck(notifications().tokenOf("b"));
    EXPECT_TRUE(daemon.hasFired(""));
    EXPECT_TRUE(daemon.hasFired("b")); // the first call took a's firing only
    EXPECT_FALSE(daemon.hasFired(""));
}

TEST_F(Watcher, RemovingStopsPollingAndCancelsTheRegistration) {
    ASSERT_TRUE(daemon.addListener("a"));
    ASSERT_TRUE(daemon.addListener("b"));
    const int tokenA = notifications().tokenOf("a");
    daemon.removeListener("unknown");
    EXPECT_EQ(daemon.watchedCount(), 2u);

    daemon.removeListener("a");
    EXPECT_FALSE(daemon.isWatching("a"));
    EXPECT_FALSE(notifications().isRegistered(tokenA));

    daemon.removeListener("");
    EXPECT_EQ(daemon.watchedCount(), 0u);
}

TEST_F(Watcher, SecondListenerForANameReplacesTheFirst) {
    ASSERT_TRUE(daemon.addListener("a"));
    const int firstToken = notifications().tokenOf("a");
    ASSERT_TRUE(daemon.addListener("a"));
    const int secondToken = notifications().tokenOf("a");
    EXPECT_NE(firstToken, secondToken);
    EXPECT_EQ(daemon.watchedCount(), 1u);
    const std::uint64_t firstChecks = notifications().checksDone(firstToken);
    waitForFreshCheck(secondToken);
    EXPECT_EQ(notifications().checksDone(firstToken), firstChecks); // the first thread ended
}

TEST_F(Watcher, RegistrationFailureRaisesAndWatchesNothing) {
    notifications().failRegistrations(true);
    try {
        daemon.addListener("a");
        FAIL() << "registration failure not reported";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "token could not be registered");
    }
    EXPECT_EQ(daemon.watchedCount(), 0u);
}

class Recorder : public VLM::IVLMChangeNotifier {
public:
    void OnVLMNotify(const std::string& text) override { heard.push_back(text); }
    std::vector<std::string> heard;
};

TEST_F(Watcher, TransportTurnsEventsAndLibraryChangesIntoFontChanges) {
    VLM::MacVLMNotifyHandler handler;
    Recorder listener;
    handler.registerNotifer(&listener);
    handler.start();
    handler.start(); // the watcher is made once
    ASSERT_TRUE(handler.isWatchingLibrary());
    EXPECT_TRUE(platform.appEvents.hasHandler("VLM4", "****"));

    const int token = notifications().tokenOf(libraryChanged);
    ASSERT_NE(token, -1);
    waitForFreshCheck(token);
    handler.push();
    handler.push(); // one firing, one command
    std::string reply;
    platform.appEvents.deliver({"VLM4", "FFSC", ""}, reply);
    EXPECT_EQ(listener.heard, std::vector<std::string>(2, "<cmd cmd=\"fontChanged\"></cmd>"));

    handler.end();
    EXPECT_FALSE(handler.isWatchingLibrary());
    EXPECT_FALSE(platform.appEvents.hasHandler("VLM4", "****"));
    EXPECT_EQ(platform.appEvents.deliver({"VLM4", "FSBC", ""}, reply),
              Platform::Status::notHandled);
}

} // namespace
