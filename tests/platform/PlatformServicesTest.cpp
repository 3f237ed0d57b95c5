// The Linux services on a private session bus with private XDG folders: app events,
// running applications and desktop-entry launchers.

#include "PrivateSession.h"
#include "platform/Status.h"
#include "platform/linux/BusRunningApplications.h"
#include "platform/linux/DBusAppEvents.h"
#include "platform/linux/DesktopEntryLaunchers.h"

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
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

    auto silent = DBusAppEvents::open(vellumine, status); // owns the name but never dispatches
    ASSERT_TRUE(silent);
    EXPECT_EQ(DBusAppEvents::open(vellumine, status), nullptr);
    EXPECT_EQ(status, Status::permissionDenied);
    host->setCallTimeout(std::chrono::milliseconds(200));
    EXPECT_EQ(host->send("VLMQ", {"VLMQ", "****", ""}, reply), Status::timeout);
    silent.reset();
    EXPECT_NE(DBusAppEvents::open(vellumine, status), nullptr) << "free again once closed";
}

// What reached a peer in this process: its calls, and whether the marker sent after them
// arrived, which tells that every earlier call has arrived too.
struct Arrivals {
    int calls = 0;
    bool marked = false;
    std::string reply;
};

int record(const AppEvent& event, std::string& reply, void* refcon) {
    auto* arrivals = static_cast<Arrivals*>(refcon);
    if (event.eventID == "MARK")
        arrivals->marked = true;
    else
        ++arrivals->calls;
    reply = arrivals->reply;
    return Status::ok;
}

// A stopped font manager still owns its name: the first send waits for the call timeout,
// later ones to the same instance fail at once, the user hears of it once, and a new owner
// of the name is asked again at once.
TEST_F(PlatformServicesTest, ASilentPeerCostsOneTimeoutUntilAnotherOwnsTheName) {
    std::vector<std::string> notices;
    host->setNoticeHandler([&](const std::string& text) { notices.push_back(text); });
    host->setCallTimeout(std::chrono::milliseconds(300));
    Arrivals arrivals;
    auto silent = DBusAppEvents::open(vellumine, status); // dispatched only below
    ASSERT_TRUE(silent);
    silent->installHandler("VLMQ", Platform::anyEventID, record, &arrivals);
    std::string reply;
    for (int attempt = 0; attempt < 3; ++attempt)
        EXPECT_EQ(host->send("VLMQ", {"VLMQ", "****", ""}, reply), Status::timeout) << attempt;
    auto arrived = [&] {
        arrivals.marked = false;
        EXPECT_EQ(host->sendNoReply("VLMQ", {"VLMQ", "MARK", ""}), Status::ok);
        EXPECT_TRUE(
            VlmTest::waitFor([&] { return silent->processPending() == 0 && arrivals.marked; }));
        return arrivals.calls;
    };
    EXPECT_EQ(arrived(), 1) << "only the first send went out";
    EXPECT_EQ(notices, std::vector<std::string>{
                           "the font manager (org.vellumine.Vellumine) does not answer: no reply "
                           "within 0.3 s (is it stopped?); requests to it fail at once until it "
                           "is restarted or 30 s have passed"});

    // Once the memory has passed, the same instance is asked again, without a second notice.
    host->setTroubleMemory(std::chrono::milliseconds(0));
    EXPECT_EQ(host->send("VLMQ", {"VLMQ", "****", ""}, reply), Status::timeout);
    EXPECT_EQ(arrived(), 2);
    EXPECT_EQ(notices.size(), 1u);

    host->setTroubleMemory(DBusAppEvents::defaultTroubleMemory);
    EXPECT_EQ(host->send("VLMQ", {"VLMQ", "****", ""}, reply), Status::timeout);
    silent.reset();
    session.spawn({VLM_TEST_BUS_PEER, vellumine});
    ASSERT_TRUE(VlmTest::waitFor([&] { return host->hasOwner(vellumine); }));
    EXPECT_EQ(host->send("VLMQ", {"VLMQ", "****", "again"}, reply), Status::ok);
    EXPECT_EQ(reply, "VLMQ/****:again");
}

// A reply past the limit is refused before its text is copied, the user hears of it once,
// and the same instance is not asked again for a while: a caller's retries must not fetch
// the same oversized reply again and again.
TEST_F(PlatformServicesTest, AnOversizedReplyIsRefusedAndNotFetchedAgain) {
    std::vector<std::string> notices;
    host->setNoticeHandler([&](const std::string& text) { notices.push_back(text); });
    Arrivals arrivals;
    arrivals.reply.assign(17u << 20, 'x');
    std::atomic<bool> ready{false}, stop{false};
    std::thread peer([&] {
        int peerStatus = 0;
        auto events = DBusAppEvents::open(vellumine, peerStatus);
        events->installHandler("VLMQ", Platform::anyEventID, record, &arrivals);
        ready = true;
        events->runUntil([&] { return stop.load(); }, 10);
    });
    ASSERT_TRUE(VlmTest::waitFor([&] { return ready.load(); }));
    std::string reply = "stale";
    EXPECT_EQ(host->send("VLMQ", {"VLMQ", "****", ""}, reply), Status::replyTooLarge);
    EXPECT_EQ(reply, "");
    EXPECT_EQ(host->send("VLMQ", {"VLMQ", "****", ""}, reply), Status::replyTooLarge);
    stop = true;
    peer.join();
    EXPECT_EQ(arrivals.calls, 1);
    EXPECT_EQ(notices, std::vector<std::string>{
                           "the font manager (org.vellumine.Vellumine) sent a reply of 17 MiB, "
                           "more than the 16 MiB an application may send; the reply was "
                           "refused; requests to it fail at once until it is restarted or 30 s "
                           "have passed"});

    // What a caller refuses of a reply's content is told once per instance as well.
    host->reportRefusedReply("VLMQ", "it is odd");
    host->reportRefusedReply("VLMQ", "it is odd");
    EXPECT_EQ(notices.back(), "the reply of the font manager (org.vellumine.Vellumine) was "
                              "refused: it is odd");
    EXPECT_EQ(notices.size(), 2u);
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

// A host that lets the kernel reap its children cannot wait for the launch's child; the
// outcome must reach it all the same.
TEST_F(PlatformServicesTest, LaunchOutcomesReachAHostThatIgnoresItsChildren) {
    struct sigaction ignore {};
    struct sigaction previous {};
    ignore.sa_handler = SIG_IGN;
    sigaction(SIGCHLD, &ignore, &previous);
    std::string script = session.root() + "/not-a-program";
    std::ofstream(script) << "\x01\x02 no interpreter line";
    chmod(script.c_str(), 0755);
    EXPECT_EQ(launchers.launchInBackground({"x", "", {script}}), Status::launchFailed);
    EXPECT_NE(launchers.lastError().find("not-a-program"), std::string::npos);
    launcher.argv = {VLM_TEST_BUS_PEER, vellumine, "--lifetime", "60"};
    EXPECT_EQ(launchers.launchInBackground(launcher), Status::ok) << launchers.lastError();
    sigaction(SIGCHLD, &previous, nullptr);
    ASSERT_TRUE(VlmTest::waitFor([&] { return host->hasOwner(vellumine); }));
    session.killLater(running().at(0).processID);
}

} // namespace
