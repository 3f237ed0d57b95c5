// The link's transport, watcher and process control running on the real Linux services,
// each test in its own private session.

#include "PrivateSession.h"
#include "link/MacVLMNotifyHandler.h"
#include "link/ProtocolConstants.h"
#include "link/VLMChangeNotifier.h"
#include "link/VLMController.h"
#include "platform/Platform.h"
#include "platform/linux/DBusAppEvents.h"
#include "platform/linux/DefaultServices.h"

#include <gtest/gtest.h>

#include <chrono>
#include <sys/wait.h>

using Platform::Linux::DBusAppEvents;
using Platform::Linux::DefaultServices;
namespace Status = Platform::Status;

namespace {

class Listener : public VLM::IVLMChangeNotifier {
public:
    void OnVLMNotify(const std::string& text) override { heard.push_back(text); }
    std::vector<std::string> heard;
};

// Passes sends through to the real app events and counts them.
class CountingAppEvents : public Platform::AppEvents {
public:
    explicit CountingAppEvents(Platform::AppEvents& real) : real_(real) {}
    int send(const std::string& signature, const Platform::AppEvent& event,
             std::string& reply) override {
        ++sends;
        return real_.send(signature, event, reply);
    }
    int installHandler(const std::string& eventClass, const std::string& eventID,
                       Platform::AppEventHandlerProc handler, void* refcon) override {
        return real_.installHandler(eventClass, eventID, handler, refcon);
    }
    int removeHandler(const std::string& eventClass, const std::string& eventID,
                      Platform::AppEventHandlerProc handler) override {
        return real_.removeHandler(eventClass, eventID, handler);
    }
    int sends = 0;

private:
    Platform::AppEvents& real_;
};

class LinkOnPlatformTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(session.ok()) << session.error();
        int status = -1;
        services = DefaultServices::install(vellumineHostName, status);
        ASSERT_EQ(status, Status::ok);
        ASSERT_NE(services->bus(), nullptr);
        transport.registerNotifer(&listener);
    }
    void TearDown() override {
        transport.end();
        services.reset();
    }

    const std::string vellumineHostName = "org.galley.Galley";
    const std::string fontChanged = "<cmd cmd=\"fontChanged\"></cmd>";
    VlmTest::PrivateSession session;
    std::unique_ptr<DefaultServices> services;
    VLM::MacVLMNotifyHandler transport;
    Listener listener;
};

TEST_F(LinkOnPlatformTest, FontManagerEventReachesTheHandlerTheHostInstalled) {
    transport.start();
    int status = -1;
    auto fontManager = DBusAppEvents::open("org.vellumine.Vellumine", status);
    ASSERT_TRUE(fontManager);

    ASSERT_EQ(fontManager->sendNoReply("InDn", {"VLM4", "XXXX", ""}), Status::ok);
    ASSERT_EQ(fontManager->sendNoReply("InDn", {"VLM4", "FSBC", ""}), Status::ok);
    ASSERT_EQ(fontManager->sendNoReply("InDn", {"VLM4", "FFSC", ""}), Status::ok);
    ASSERT_TRUE(VlmTest::waitFor([&] {
        services->bus()->processPending();
        return listener.heard.size() >= 2;
    }));
    EXPECT_EQ(listener.heard, (std::vector<std::string>{fontChanged, fontChanged}))
        << "the other ID is accepted and ignored";

    transport.end();
    int result = Status::ok;
    bool answered = false;
    ASSERT_EQ(fontManager->sendAsync("InDn", {"VLM4", "FSBC", ""},
                                     [&](int status, const std::string&) {
                                         result = status;
                                         answered = true;
                                     }),
              Status::ok);
    ASSERT_TRUE(VlmTest::waitFor([&] {
        services->bus()->processPending();
        fontManager->processPending();
        return answered;
    }));
    EXPECT_EQ(result, Status::notHandled) << "no handler once the transport ended";
}

TEST_F(LinkOnPlatformTest, PostedNotificationFiresTheWatcher) {
    transport.start();
    // The first check after registration always fires: take that one out first.
    ASSERT_TRUE(VlmTest::waitFor([&] {
        transport.push();
        return listener.heard.size() == 1;
    }));

    pid_t poster = session.spawn({NOTIFYUTIL, "-p", VLM::libraryChangedNotification});
    ASSERT_GT(poster, 0);
    int exitStatus = -1;
    ASSERT_EQ(waitpid(poster, &exitStatus, 0), poster);
    EXPECT_EQ(exitStatus, 0);

    ASSERT_TRUE(VlmTest::waitFor([&] {
        transport.push();
        return listener.heard.size() == 2;
    }));
    EXPECT_EQ(listener.heard.back(), fontChanged);
}

TEST_F(LinkOnPlatformTest, SendToANameWithoutOwnerSpendsTwentyAttemptsOfRealTime) {
    CountingAppEvents counting(*services->bus());
    Platform::Services withCounting = services->services();
    withCounting.appEvents = &counting;
    Platform::install(withCounting);

    auto started = std::chrono::steady_clock::now();
    EXPECT_EQ(transport.SendToVlm("<cmd>fontRequest</cmd>"), "");
    auto waited = std::chrono::steady_clock::now() - started;
    EXPECT_EQ(counting.sends, VLM::MacVLMNotifyHandler::maxSendAttempts);
    // Twenty half-second waits on the real clock; only the lower bound is the behaviour.
    EXPECT_GE(waited, std::chrono::milliseconds(9500));

    session.spawn({VLM_TEST_BUS_PEER, "org.vellumine.Vellumine"});
    ASSERT_TRUE(
        VlmTest::waitFor([&] { return services->bus()->hasOwner("org.vellumine.Vellumine"); }));
    counting.sends = 0;
    EXPECT_EQ(transport.SendToVlm("<cmd>fontRequest</cmd>\n</cmd>"),
              "VLMQ/****:<cmd>fontRequest</cmd>");
    EXPECT_EQ(counting.sends, 1);
    Platform::install(services->services());
}

TEST_F(LinkOnPlatformTest, LaunchVellumineStartsTheFontManagerThroughItsDesktopEntry) {
    Platform::RunningApplication process;
    bool found = true;
    VLM::VLMController::FindVellumineProcess(process, found);
    ASSERT_FALSE(found);

    // Only the middle launcher is installed, in a system data folder.
    session.writeDesktopEntry("org.vellumine.Vellumine.Launcher2",
                              "[Desktop Entry]\nType=Application\nName=Vellumine\n"
                              "Exec=\"" VLM_TEST_BUS_PEER "\" org.vellumine.Vellumine "
                              "--lifetime 60\n",
                              1);
    EXPECT_EQ(VLM::VLMController::LaunchVellumine(), 0);

    ASSERT_EQ(VLM::VLMController::FindVellumineProcess(process, found), 0);
    ASSERT_TRUE(found);
    session.killLater(process.processID);
    EXPECT_EQ(process.signature, "VLMQ");
    EXPECT_NE(process.processID, getpid());
}

} // namespace
