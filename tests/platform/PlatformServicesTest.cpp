#include "PrivateSession.h"
#include "platform/Status.h"
#include "platform/linux/BusRunningApplications.h"
#include "platform/linux/DBusAppEvents.h"
#include "platform/linux/DesktopEntryLaunchers.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sys/stat.h>
#include <unistd.h>

using Platform::Linux::DBusAppEvents;
namespace Status = Platform::Status;

namespace {

class PlatformServicesTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(session.ok()) << session.error();
        int status = -1;
        host = DBusAppEvents::open("", status);
        ASSERT_TRUE(host) << status;
    }
    void TearDown() override { host.reset(); }

    // Waits for the name's owner to appear and returns its pid (0 when it never did).
    pid_t waitForOwner(const std::string& name) {
        Platform::Linux::BusRunningApplications running(*host);
        pid_t pid = 0;
        VlmTest::waitFor([&] {
            std::vector<Platform::RunningApplication> list;
            running.list(list);
            for (const auto& app : list) {
                if (app.name == name) {
                    pid = app.processID;
                }
            }
            return pid != 0;
        });
        return pid;
    }

    std::string peerEntry(const std::string& extra = "") {
        return "[Desktop Entry]\nType=Application\nName=Vellumine\n" + extra +
               "Exec=\"" VLM_TEST_BUS_PEER "\" org.vellumine.Vellumine --lifetime 60 %U\n";
    }

    VlmTest::PrivateSession session;
    std::unique_ptr<DBusAppEvents> host;
    Platform::Linux::DesktopEntryLaunchers launchers;
};

TEST_F(PlatformServicesTest, RunningApplicationsAreTheOwnedTableNamesInTableOrder) {
    Platform::Linux::BusRunningApplications running(*host);
    std::vector<Platform::RunningApplication> list{{"XXXX", "stale", 1}};
    ASSERT_EQ(running.list(list), Status::ok);
    EXPECT_TRUE(list.empty());

    int status = -1;
    auto galley = DBusAppEvents::open("org.galley.Galley", status);
    ASSERT_TRUE(galley);
    pid_t peer = session.spawn({VLM_TEST_BUS_PEER, "org.vellumine.Vellumine"});
    auto other = DBusAppEvents::open("org.example.NotInTheTable", status);
    ASSERT_EQ(waitForOwner("org.vellumine.Vellumine"), peer);

    ASSERT_EQ(running.list(list), Status::ok);
    ASSERT_EQ(list.size(), 2u);
    EXPECT_EQ(list[0].signature, "VLMQ");
    EXPECT_EQ(list[0].name, "org.vellumine.Vellumine");
    EXPECT_EQ(list[0].processID, peer);
    EXPECT_EQ(list[1].signature, "InDn");
    EXPECT_EQ(list[1].name, "org.galley.Galley");
    EXPECT_EQ(list[1].processID, getpid());
}

TEST_F(PlatformServicesTest, LaunchersAreFoundInDataHomeThenDataDirsInOrder) {
    Platform::Launcher launcher;
    EXPECT_EQ(launchers.find("org.vellumine.Vellumine.Launcher", launcher), Status::notFound);

    std::string second =
        session.writeDesktopEntry("org.vellumine.Vellumine.Launcher", peerEntry(), 1);
    ASSERT_EQ(launchers.find("org.vellumine.Vellumine.Launcher", launcher), Status::ok);
    EXPECT_EQ(launcher.path, second);
    EXPECT_EQ(launcher.identifier, "org.vellumine.Vellumine.Launcher");
    EXPECT_EQ(launcher.argv, (std::vector<std::string>{VLM_TEST_BUS_PEER, "org.vellumine.Vellumine",
                                                       "--lifetime", "60"}));

    std::string first =
        session.writeDesktopEntry("org.vellumine.Vellumine.Launcher", peerEntry(), 0);
    ASSERT_EQ(launchers.find("org.vellumine.Vellumine.Launcher", launcher), Status::ok);
    EXPECT_EQ(launcher.path, first);

    // The user's own entry shadows the system's, also when it hides the application.
    session.writeDesktopEntry("org.vellumine.Vellumine.Launcher", peerEntry("Hidden=true\n"));
    EXPECT_EQ(launchers.find("org.vellumine.Vellumine.Launcher", launcher), Status::notFound);
    EXPECT_NE(launchers.lastError().find("hidden"), std::string::npos);
}

TEST_F(PlatformServicesTest, EntriesThatCannotLaunchCountAsNotInstalled) {
    Platform::Launcher launcher;
    session.writeDesktopEntry("try", peerEntry("TryExec=/nonexistent/vellumine\n"));
    EXPECT_EQ(launchers.find("try", launcher), Status::notFound);
    EXPECT_NE(launchers.lastError().find("TryExec"), std::string::npos);

    session.writeDesktopEntry("link", "[Desktop Entry]\nType=Link\nURL=https://example.org\n");
    EXPECT_EQ(launchers.find("link", launcher), Status::notFound);

    session.writeDesktopEntry("broken", "[Desktop Entry]\nExec=\"unterminated\n");
    EXPECT_EQ(launchers.find("broken", launcher), Status::notFound);
    EXPECT_NE(launchers.lastError().find("unterminated"), std::string::npos);

    session.writeDesktopEntry("garbage", std::string("\x7f"
                                                     "ELF\0\0\xff",
                                                     7));
    EXPECT_EQ(launchers.find("garbage", launcher), Status::notFound);

    EXPECT_EQ(launchers.find("../../etc/passwd", launcher), Status::invalidArgument);
    EXPECT_EQ(launchers.find("", launcher), Status::invalidArgument);
}

TEST_F(PlatformServicesTest, LaunchStartsTheProgramDetachedInItsOwnSession) {
    session.writeDesktopEntry("org.vellumine.Vellumine.Launcher3", peerEntry());
    Platform::Launcher launcher;
    ASSERT_EQ(launchers.find("org.vellumine.Vellumine.Launcher3", launcher), Status::ok);
    ASSERT_EQ(launchers.launchInBackground(launcher), Status::ok) << launchers.lastError();

    pid_t pid = waitForOwner("org.vellumine.Vellumine");
    ASSERT_GT(pid, 0);
    session.killLater(pid);
    EXPECT_NE(getsid(pid), getsid(0)) << "runs in a session of its own";
    EXPECT_EQ(waitpid(pid, nullptr, WNOHANG), -1) << "not our child: nothing left to reap";
    EXPECT_EQ(errno, ECHILD);
    std::string stdinTarget(256, '\0');
    ssize_t n = readlink(("/proc/" + std::to_string(pid) + "/fd/0").c_str(), stdinTarget.data(),
                         stdinTarget.size());
    ASSERT_GT(n, 0);
    EXPECT_EQ(stdinTarget.substr(0, n), "/dev/null");
}

TEST_F(PlatformServicesTest, ExecFailuresComeBackAsLaunchFailed) {
    Platform::Launcher missing{"x", "", {"/nonexistent/program"}};
    EXPECT_EQ(launchers.launchInBackground(missing), Status::launchFailed);

    // Executable but no program: execve itself fails in the detached child, and the error
    // must still reach us.
    std::string script = session.root() + "/not-a-program";
    std::ofstream(script) << "\x01\x02 no interpreter line";
    chmod(script.c_str(), 0755);
    Platform::Launcher unrunnable{"x", "", {script}};
    EXPECT_EQ(launchers.launchInBackground(unrunnable), Status::launchFailed);
    EXPECT_NE(launchers.lastError().find("not-a-program"), std::string::npos);

    EXPECT_EQ(launchers.launchInBackground(Platform::Launcher{}), Status::invalidArgument);
}

} // namespace
