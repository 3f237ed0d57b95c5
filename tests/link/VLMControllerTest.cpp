#include "LinkFixture.h"

#include "link/VLMController.h"

namespace {

using VLM::VLMController;

TEST(ProtocolVersion, SeparatesMajorAndMinor) {
    unsigned long major = 0;
    unsigned long minor = 7;
    EXPECT_TRUE(VLMController::separateVersion("2", major, minor));
    EXPECT_EQ(major, 2u);
    EXPECT_EQ(minor, 7u); // one number leaves minor as given
    EXPECT_TRUE(VLMController::separateVersion("3.14.15", major, minor));
    EXPECT_EQ(major, 3u);
    EXPECT_EQ(minor, 14u);
    for (const char* bad : {"", "abc", "2.x", "..."}) {
        EXPECT_FALSE(VLMController::separateVersion(bad, major, minor)) << '"' << bad << '"';
    }
}

TEST(ProtocolVersion, ComparesComponentByComponent) {
    for (const char* accepted : {"2.0", "2", "2.7.1", "10.0", "2.0.5"}) {
        EXPECT_TRUE(VLMController::checkForNeededProtocolVersion(accepted, 2, 0)) << accepted;
    }
    for (const char* rejected : {"1.99", "1", "", "abc", "2.x"}) {
        EXPECT_FALSE(VLMController::checkForNeededProtocolVersion(rejected, 2, 0)) << rejected;
    }
    EXPECT_TRUE(VLMController::checkForNeededProtocolVersion("2.5", 2, 5));
    EXPECT_FALSE(VLMController::checkForNeededProtocolVersion("3.0", 2, 5)); // deliberate
}

class Launching : public VLMTest::LinkTest {
protected:
    static constexpr const char* launcher3 = "org.vellumine.Vellumine.Launcher3";
    static constexpr const char* launcher2 = "org.vellumine.Vellumine.Launcher2";
    static constexpr const char* launcher1 = "org.vellumine.Vellumine.Launcher";

    void appearOnLaunch() {
        platform.launchers.onLaunch([this](const Platform::Launcher&) {
            platform.runningApplications.add("VLMQ", "org.vellumine.Vellumine", 4242);
        });
    }
};

TEST_F(Launching, FindsTheFontManagerBySignature) {
    platform.runningApplications.add("InDn", "org.galley.Galley", 10);
    Platform::RunningApplication process;
    bool found = true;
    EXPECT_EQ(VLMController::FindVellumineProcess(process, found), Platform::Status::notRunning);
    EXPECT_FALSE(found);

    platform.runningApplications.add("VLMQ", "org.vellumine.Vellumine", 11);
    EXPECT_EQ(VLMController::FindVellumineProcess(process, found), Platform::Status::ok);
    EXPECT_TRUE(found);
    EXPECT_EQ(process.processID, 11);
}

TEST_F(Launching, AlreadyRunningNeedsNoLauncher) {
    platform.runningApplications.add("VLMQ", "org.vellumine.Vellumine", 11);
    EXPECT_EQ(VLMController::LaunchVellumine(), Platform::Status::ok);
    EXPECT_TRUE(platform.launchers.lookups().empty());
    EXPECT_TRUE(platform.launchers.launches().empty());
}

TEST_F(Launching, FallsBackToOlderLaunchers) {
    platform.launchers.installLauncher(launcher2, "/usr/share/applications/l2.desktop");
    platform.launchers.installLauncher(launcher1, "/usr/share/applications/l1.desktop");
    appearOnLaunch();
    EXPECT_EQ(VLMController::LaunchVellumine(), Platform::Status::ok);
    EXPECT_EQ(platform.launchers.lookups(), (std::vector<std::string>{launcher3, launcher2}));
    EXPECT_EQ(platform.launchers.launches(), std::vector<std::string>{launcher2});
}

TEST_F(Launching, WithoutAnyLauncherReportsTheLastError) {
    EXPECT_EQ(VLMController::LaunchVellumine(), Platform::Status::notFound);
    EXPECT_EQ(platform.launchers.lookups(),
              (std::vector<std::string>{launcher3, launcher2, launcher1}));
    EXPECT_TRUE(platform.launchers.launches().empty());
}

TEST_F(Launching, FailedStartTriesTheNextLauncher) {
    platform.launchers.installLauncher(launcher3, "/a");
    platform.launchers.installLauncher(launcher1, "/c");
    platform.launchers.failLaunches(Platform::Status::launchFailed);
    EXPECT_EQ(VLMController::LaunchVellumine(), Platform::Status::launchFailed);
    EXPECT_EQ(platform.launchers.launches(), (std::vector<std::string>{launcher3, launcher1}));
}

TEST_F(Launching, StopsWaitingOnceTheProcessAppears) {
    platform.launchers.installLauncher(launcher3, "/a");
    appearOnLaunch();
    EXPECT_EQ(VLMController::LaunchVellumine(launcher3), Platform::Status::ok);
    EXPECT_EQ(platform.clock.dateQueries(), 1); // the start time only
}

TEST_F(Launching, ProcessThatNeverAppearsIsStillASuccessAfterFifteenSeconds) {
    platform.launchers.installLauncher(launcher3, "/a");
    EXPECT_EQ(VLMController::LaunchVellumine(launcher3), Platform::Status::ok);
    EXPECT_EQ(platform.launchers.launches().size(), 1u);
    EXPECT_EQ(platform.clock.dateQueries(), 16); // start, then one per poll for 15 seconds
    EXPECT_EQ(platform.runningApplications.listCalls(), 1 + 15);
}

} // namespace
