#include "LinkFixture.h"

#include "link/VLMController.h"

namespace {

using VLM::VLMController;

TEST(ProtocolVersion, ComparesMajorAndMinorSeparately) {
    const struct {
        const char* text;
        unsigned long major, minor;
        bool accepted;
    } rows[] = {{"2.0", 2, 0, true},  {"2", 2, 0, true},     {"2.7.1", 2, 0, true},
                {"10.0", 2, 0, true}, {"1.99", 2, 0, false}, {"", 2, 0, false},
                {"abc", 2, 0, false}, {"2.x", 2, 0, false},  {"...", 2, 0, false},
                {"2.5", 2, 5, true},  {"2", 2, 5, false},    {"3.0", 2, 5, false}};
    for (const auto& row : rows) {
        EXPECT_EQ(VLMController::checkForNeededProtocolVersion(row.text, row.major, row.minor),
                  row.accepted)
            << '"' << row.text << "\" against " << row.major << '.' << row.minor;
    }
}

using namespace Platform::Status;
using Names = std::vector<std::string>;
const std::string l3 = "org.vellumine.Vellumine.Launcher3";
const std::string l2 = "org.vellumine.Vellumine.Launcher2";
const std::string l1 = "org.vellumine.Vellumine.Launcher";
using Launching = VLMTest::LinkTest;

TEST_F(Launching, FindsTheRunningFontManagerAndNeedsNoLauncherThen) {
    platform.runningApplications.add("InDn", "org.galley.Galley", 10);
    Platform::RunningApplication process;
    bool found = true;
    EXPECT_EQ(VLMController::FindVellumineProcess(process, found), notRunning);
    EXPECT_FALSE(found);

    platform.runningApplications.add("VLMQ", "org.vellumine.Vellumine", 11);
    EXPECT_EQ(VLMController::FindVellumineProcess(process, found), ok);
    EXPECT_TRUE(found);
    EXPECT_EQ(process.processID, 11);
    EXPECT_EQ(VLMController::LaunchVellumine(), ok);
    EXPECT_TRUE(platform.launchers.lookups().empty());
    EXPECT_TRUE(platform.launchers.launches().empty());
}

TEST_F(Launching, TriesTheLaunchersNewestFirstAndReportsTheLastError) {
    const struct {
        Names installed;
        int launchStatus;
        int result;
        Names lookups, launches;
    } rows[] = {{{l2, l1}, ok, ok, {l3, l2}, {l2}},
                {{}, ok, notFound, {l3, l2, l1}, {}},
                {{l3, l1}, launchFailed, launchFailed, {l3, l2, l1}, {l3, l1}}};
    for (const auto& row : rows) {
        VLMTest::FakePlatform fresh;
        for (const std::string& launcher : row.installed) {
            fresh.launchers.installLauncher(launcher, "/" + launcher);
        }
        fresh.launchers.failLaunches(row.launchStatus);
        EXPECT_EQ(VLMController::LaunchVellumine(), row.result);
        EXPECT_EQ(fresh.launchers.lookups(), row.lookups);
        EXPECT_EQ(fresh.launchers.launches(), row.launches);
    }
}

// The wait for the started process is bounded by 15 seconds of the clock, one poll each.
TEST_F(Launching, LaunchWaitsUntilTheProcessAppearsOrFifteenSecondsPass) {
    platform.launchers.installLauncher(l3, "/a");
    EXPECT_EQ(VLMController::LaunchVellumine(l3), ok);
    EXPECT_EQ(platform.clock.dateQueries(), 16);
    EXPECT_EQ(platform.runningApplications.listCalls(), 1 + 15);

    platform.launchers.onLaunch([this](const Platform::Launcher&) {
        platform.runningApplications.add("VLMQ", "org.vellumine.Vellumine", 4242);
    });
    EXPECT_EQ(VLMController::LaunchVellumine(l3), ok);
    EXPECT_EQ(platform.clock.dateQueries(), 16 + 1); // the start time only
    EXPECT_EQ(platform.launchers.launches().size(), 2u);
}

} // namespace
