// The Linux services on a private session bus with private XDG folders: app events,
// running applications and desktop-entry launchers.

#include "PrivateSession.h"
#include "platform/Status.h"
#include "platform/linux/BusRunningApplications.h"
#include "platform/linux/DBusAppEvents.h"
#include "platform/linux/DesktopEntryLaunchers.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <sys/wait.h>
#include <tuple>

using Platform::AppEvent;
using Platform::Launcher;
using Platform::Linux::DBusAppEvents;
namespace Status = Platform::Status;
using Outcome = std::pair<int, std::string>; // a sender's result and reply text

namespace {

const std::string vellumine = "org.vellumine.Vellumine";

// A handler that answers with the Outcome given as its refcon.
int answer(const AppEvent&, std::string& reply, void* refcon) {
    reply = static_cast<Outcome*>(refcon)->second;
    return static_cast<Outcome*>(refcon)->first;
}

class PlatformServicesTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(session.ok()) << session.error();
        host = DBusAppEvents::open("", status);
        ASSERT_TRUE(host) << status;
    }

    std::vector<Platform::RunningApplication> running() {
        std::vector<Platform::RunningApplication> list{{"XXXX", "stale", 1}};
        EXPECT_EQ(Platform::Linux::BusRunningApplications(*host).list(list), Status::ok);
        return list;
    }

    std::string peerEntry(const std::string& extra = "") {
        return "[Desktop Entry]\nType=Application\nName=Vellumine\n" + extra + "Exec=\"" +
               VLM_TEST_BUS_PEER + "\" " + vellumine + " --lifetime 60 %U\n";
    }

    VlmTest::PrivateSession session;
    int status = -1;
    std::unique_ptr<DBusAppEvents> host;
    Platform::Linux::DesktopEntryLaunchers launchers;
    Launcher launcher;
};

TEST_F(PlatformServicesTest, RunningPeersAreListedInTableOrderAndAnswerBySignature) {
    EXPECT_TRUE(running().empty());
    auto galley = DBusAppEvents::open("org.galley.Galley", status);
    auto other = DBusAppEvents::open("org.example.NotInTheTable", status);
    pid_t peer = session.spawn({VLM_TEST_BUS_PEER, vellumine});
    ASSERT_TRUE(VlmTest::waitFor([&] { return host->hasOwner(vellumine); }));
    auto list = running();
    ASSERT_EQ(list.size(), 2u);
    EXPECT_EQ(list[0].signature + " " + list[0].name, "VLMQ " + vellumine);
    EXPECT_EQ(list[0].processID, peer);
    EXPECT_EQ(list[1].signature + " " + list[1].name, "InDn org.galley.Galley");
    EXPECT_EQ(list[1].processID, getpid());

    std::string reply;
    const std::string request = "<cmd>fontRequest</cmd>\n<font name=\"Zapf & Söhne\"/>";
    ASSERT_EQ(host->send("VLMQ", {"VLMQ", "****", request}, reply), Status::ok);
    EXPECT_EQ(reply, "VLMQ/****:" + request);
    EXPECT_EQ(host->send("VLMQ", {"ABCD", "****", ""}, reply), Status::notHandled);
}

TEST_F(PlatformServicesTest, NamesWithoutOwnerDoNotRunTakenOnesAreRefusedSilentOnesTimeOut) {
    std::string reply = "stale";
    EXPECT_EQ(host->send("VLMQ", {"VLMQ", "****", "x"}, reply), Status::notRunning);
    EXPECT_EQ(reply, "");
    EXPECT_EQ(host->sendNoReply("VLMQ", {"VLM4", "FSBC", ""}), Status::notRunning);
    EXPECT_FALSE(host->hasOwner(vellumine));

    // sd-bus's own setting for the default method-call timeout, read at connection time.
    setenv("SYSTEMD_BUS_TIMEOUT", "1", 1);
    auto client = DBusAppEvents::open("", status);
    unsetenv("SYSTEMD_BUS_TIMEOUT");
    auto silent = DBusAppEvents::open(vellumine, status); // owns the name but never dispatches
    ASSERT_TRUE(client && silent);
    EXPECT_EQ(DBusAppEvents::open(vellumine, status), nullptr);
    EXPECT_EQ(status, Status::permissionDenied);
    EXPECT_EQ(client->send("VLMQ", {"VLMQ", "****", ""}, reply), Status::timeout);
    silent.reset();
    EXPECT_NE(DBusAppEvents::open(vellumine, status), nullptr) << "free again once closed";
}

TEST_F(PlatformServicesTest, HandlersAreChosenByExactIDThenWildcardAndTheirStatusesReturn) {
    // The host sends VLM4/`id` to itself and dispatches until the reply came.
    auto call = [&](const std::string& id) {
        Outcome outcome{1, "stale"};
        auto done = [&](int result, const std::string& text) { outcome = {result, text}; };
        EXPECT_EQ(host->sendAsync(host->uniqueName(), {"VLM4", id, ""}, done), Status::ok);
        VlmTest::waitFor(
            [&] { return host->processPending() == Status::ok && outcome.first != 1; });
        return outcome;
    };
    Outcome exact{Status::ok, "exact"}, wildcard{Status::ok, "any"};
    ASSERT_EQ(host->installHandler("VLM4", "FSBC", answer, &exact), Status::ok);
    ASSERT_EQ(host->installHandler("VLM4", Platform::anyEventID, answer, &wildcard), Status::ok);
    EXPECT_EQ(call("FSBC"), exact);
    EXPECT_EQ(call("FFSC"), wildcard);

    // Removal needs the routine that was installed; installing again replaces it.
    auto otherRoutine = +[](const AppEvent&, std::string&, void*) { return Status::ok; };
    EXPECT_NE(host->removeHandler("VLM4", "FSBC", otherRoutine), Status::ok);
    EXPECT_EQ(host->removeHandler("VLM4", "FSBC", answer), Status::ok);
    EXPECT_EQ(call("FSBC"), wildcard);
    Outcome other{Status::ok, "other"};
    ASSERT_EQ(host->installHandler("VLM4", Platform::anyEventID, answer, &other), Status::ok);
    EXPECT_EQ(call("FSBC"), other);

    // A handler's failure is the sender's result, without reply text.
    other = {Status::notHandled, "dropped"};
    EXPECT_EQ(call("FSBC"), Outcome(Status::notHandled, ""));
    other = {Status::launchFailed, "dropped"};
    EXPECT_EQ(call("FSBC"), Outcome(Status::transportError, ""));
    EXPECT_EQ(host->removeHandler("VLM4", Platform::anyEventID, answer), Status::ok);
    EXPECT_EQ(call("FSBC"), Outcome(Status::notHandled, ""));

    for (auto [eventClass, id, routine] :
         {std::tuple{"VLM", "****", &answer}, {"VLM4", "*", answer}, {"VLM4", "****", nullptr}})
        EXPECT_EQ(host->installHandler(eventClass, id, routine, &exact), Status::invalidArgument);
}

TEST_F(PlatformServicesTest, LaunchersAreFoundInDataHomeThenDataDirsUnlessTheyCannotRun) {
    const std::string id = "org.vellumine.Vellumine.Launcher";
    EXPECT_EQ(launchers.find(id, launcher), Status::notFound);
    std::string second = session.writeDesktopEntry(id, peerEntry(), 1);
    ASSERT_EQ(launchers.find(id, launcher), Status::ok);
    EXPECT_EQ(launcher.path, second);
    EXPECT_EQ(launcher.argv,
              (std::vector<std::string>{VLM_TEST_BUS_PEER, vellumine, "--lifetime", "60"}));
    std::string first = session.writeDesktopEntry(id, peerEntry(), 0);
    ASSERT_EQ(launchers.find(id, launcher), Status::ok);
    EXPECT_EQ(launcher.path, first);
    // The user's own entry shadows the system's, also when it hides the application.
    session.writeDesktopEntry(id, peerEntry("Hidden=true\n"));
    EXPECT_EQ(launchers.find(id, launcher), Status::notFound);
    EXPECT_NE(launchers.lastError().find("hidden"), std::string::npos);

    for (auto [name, entry, why] :
         {std::tuple<std::string, std::string, std::string>{
              "try", peerEntry("TryExec=/nonexistent/vellumine\n"), "TryExec"},
          {"link", "[Desktop Entry]\nType=Link\nExec=/bin/true\n", ""},
          {"broken", "[Desktop Entry]\nExec=\"unterminated\n", "unterminated"}}) {
        session.writeDesktopEntry(name, entry);
        EXPECT_EQ(launchers.find(name, launcher), Status::notFound) << name;
        EXPECT_NE(launchers.lastError().find(why), std::string::npos) << launchers.lastError();
    }
    EXPECT_EQ(launchers.find("../../etc/passwd", launcher), Status::invalidArgument);
    EXPECT_EQ(launchers.find("", launcher), Status::invalidArgument);
}

TEST_F(PlatformServicesTest, LaunchStartsTheProgramDetachedInItsOwnSession) {
    launcher.argv = {VLM_TEST_BUS_PEER, vellumine, "--lifetime", "60"};
    ASSERT_EQ(launchers.launchInBackground(launcher), Status::ok) << launchers.lastError();
    ASSERT_TRUE(VlmTest::waitFor([&] { return host->hasOwner(vellumine); }));
    pid_t pid = running().at(0).processID;
    session.killLater(pid);
    EXPECT_NE(getsid(pid), getsid(0)) << "runs in a session of its own";
    EXPECT_EQ(waitpid(pid, nullptr, WNOHANG), -1) << "not our child: nothing left to reap";
    EXPECT_EQ(std::filesystem::read_symlink("/proc/" + std::to_string(pid) + "/fd/0"), "/dev/null");
}

TEST_F(PlatformServicesTest, ExecFailuresComeBackAsLaunchFailed) {
    EXPECT_EQ(launchers.launchInBackground({"x", "", {"/nonexistent/program"}}),
              Status::launchFailed);
    // Executable but no program: execve fails in the detached child, and that must show.
    std::string script = session.root() + "/not-a-program";
    std::ofstream(script) << "\x01\x02 no interpreter line";
    chmod(script.c_str(), 0755);
    EXPECT_EQ(launchers.launchInBackground({"x", "", {script}}), Status::launchFailed);
    EXPECT_NE(launchers.lastError().find("not-a-program"), std::string::npos);
    EXPECT_EQ(launchers.launchInBackground(Launcher{}), Status::invalidArgument);
}

} // namespace
