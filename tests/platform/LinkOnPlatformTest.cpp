// The link's transport, watcher and process control running on the real Linux services,
// each test in its own private session.

#include "PrivateSession.h"
#include "link/MacVLMNotifyHandler.h"
#include "link/ProtocolConstants.h"
#include "link/VLMChangeNotifier.h"
#include "link/VLMController.h"
#include "platform/linux/DBusAppEvents.h"
#include "platform/linux/DefaultServices.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>

using Platform::Linux::DBusAppEvents;
namespace Status = Platform::Status;

namespace {

const std::string vellumine = "org.vellumine.Vellumine";
const std::string fontChanged = "<cmd cmd=\"fontChanged\"></cmd>";

struct Listener : VLM::IVLMChangeNotifier {
    void OnVLMNotify(const std::string& text) override { heard.push_back(text); }
    std::vector<std::string> heard;
};

class LinkOnPlatformTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(session.ok()) << session.error();
        int status = -1;
        services = Platform::Linux::DefaultServices::install("org.galley.Galley", status);
        ASSERT_EQ(status, Status::ok);
        transport.registerNotifer(&listener);
    }
    // Runs the watcher's checks and the bus until the listener heard `count` changes.
    bool hears(std::size_t count) {
        return VlmTest::waitFor([&] {
            transport.push();
            services->bus()->processPending();
            return listener.heard.size() == count;
        });
    }

    VlmTest::PrivateSession session;
    std::unique_ptr<Platform::Linux::DefaultServices> services;
    VLM::MacVLMNotifyHandler transport;
    Listener listener;
};

TEST_F(LinkOnPlatformTest, FontManagerEventsAndPostedNotificationsReachTheListener) {
    transport.start();
    ASSERT_TRUE(hears(1)) << "the first check after registration always fires";
    ASSERT_EQ(std::system(("'" NOTIFYUTIL "' -p " + VLM::libraryChangedNotification).c_str()), 0);
    ASSERT_TRUE(hears(2));

    int status = -1;
    auto fontManager = DBusAppEvents::open(vellumine, status);
    ASSERT_TRUE(fontManager);
    ASSERT_EQ(fontManager->sendNoReply("InDn", {"VLM4", "FSBC", ""}), Status::ok);
    ASSERT_TRUE(hears(3));
    EXPECT_EQ(listener.heard, std::vector<std::string>(3, fontChanged));
    transport.end();
    EXPECT_NE(services->bus()->removeHandler("VLM4", Platform::anyEventID,
                                             &VLM::MacVLMNotifyHandler::HandleEvent),
              Status::ok)
        << "end() took the handler out already";
}

// The number of attempts is the transport's own (on a fake clock); here the real clock
// must really wait between them: twenty half-second waits, only the lower bound matters.
TEST_F(LinkOnPlatformTest, SendToANameWithoutOwnerWaitsBetweenAttemptsInRealTime) {
    auto started = std::chrono::steady_clock::now();
    EXPECT_EQ(transport.SendToVlm("<cmd>fontRequest</cmd>"), "");
    EXPECT_GE(std::chrono::steady_clock::now() - started, std::chrono::milliseconds(9500));
}

TEST_F(LinkOnPlatformTest, LaunchVellumineStartsTheFontManagerThroughItsDesktopEntry) {
    Platform::RunningApplication process;
    bool found = false;
    // Only the middle launcher is installed, in a system data folder.
    session.writeDesktopEntry("org.vellumine.Vellumine.Launcher2",
                              "[Desktop Entry]\nExec=\"" VLM_TEST_BUS_PEER
                              "\" org.vellumine.Vellumine --lifetime 60\n",
                              1);
    EXPECT_EQ(VLM::VLMController::LaunchVellumine(), 0);
    ASSERT_EQ(VLM::VLMController::FindVellumineProcess(process, found), 0);
    ASSERT_TRUE(found);
    session.killLater(process.processID);
    EXPECT_EQ(process.signature, "VLMQ");
}

} // namespace
