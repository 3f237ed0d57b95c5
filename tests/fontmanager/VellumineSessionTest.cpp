// The whole conversation on a private session bus: the plug-in's link finds vellumine's
// desktop entry, launches it, asks about and activates fonts; fontconfig on a private
// configuration sees the result; vellumine tells the host with VLM4 events.
#include "FontFixtures.h"
#include "PrivateSession.h"
#include "tests/support/FontRecords.h"

#include "fontmanager/FaceReader.h"
#include "fontmanager/LauncherEntry.h"
#include "fontmanager/LibraryImporter.h"
#include "fontmanager/LibraryPaths.h"
#include "fontmanager/SqliteCatalog.h"
#include "link/NotifiyHandlerFactory.h"
#include "link/VLMController.h"
#include "link/VLMFontActivateEvent.h"
#include "link/VLMFontRequestEvent.h"
#include "platform/Status.h"
#include "platform/linux/DBusAppEvents.h"
#include "platform/linux/DefaultServices.h"

#include <gtest/gtest.h>
#include <systemd/sd-bus.h>

#include <csignal>
#include <fstream>
#include <set>
#include <sstream>
#include <sys/wait.h>
#include <thread>

namespace Vellumine {
namespace {

using namespace VellumineTest;
using VLMTest::makeFont;

int recordEvent(const Platform::AppEvent& event, std::string&, void* refcon) {
    static_cast<std::vector<std::string>*>(refcon)->push_back(event.eventClass + "/" +
                                                              event.eventID);
    return Platform::Status::ok;
}

class VellumineSession : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(session.ok()) << session.error();
        // Faces activated for an application go this soon after it left (5 s by default).
        setenv("VELLUMINE_AUTO_DEACTIVATE_DELAY", "0.3", 1);
        installLauncher(session.dataHome(), VELLUMINE_EXECUTABLE);
        {
            SqliteCatalog catalog(LibraryPaths::fromEnvironment().catalogFile());
            FaceReader reader;
            LibraryImporter(catalog, reader)
                .add({nimbusRomanType1, nimbusRomanOpenType, dejaVuSans});
        }
        int status = 0;
        host = Platform::Linux::DefaultServices::install("org.galley.Galley", status);
        ASSERT_EQ(status, Platform::Status::ok);
        // What is under test is vellumine's answer, not how long Galley waits for it: tens
        // of thousands of fonts take longer than Galley's call timeout under the sanitizers.
        host->bus()->setCallTimeout(std::chrono::seconds(60));
        host->bus()->installHandler("VLM4", "****", recordEvent, &hostEvents);
        VLM::NotifiyHandlerFactory::getNotifyHandler(true);
    }

    void TearDown() override {
        host.reset();
        unsetenv("VELLUMINE_AUTO_DEACTIVATE_DELAY");
    }

    // Galley's name on the bus again, after a test made it leave.
    void hostReturns() {
        int status = 0;
        host = Platform::Linux::DefaultServices::install("org.galley.Galley", status);
        ASSERT_EQ(status, Platform::Status::ok);
    }

    std::string requestFrom(const std::string& postScriptName) {
        return sendRaw("<cmd>fontRequest</cmd>\n<targetApp>InDn</targetApp>\n<font>\n<psName>" +
                       postScriptName + "</psName>\n</font>\n</cmd>\n");
    }

    // The process that owns a bus name, so that what vellumine started ends with the test.
    pid_t ownerOf(const std::string& name) {
        sd_bus* bus = host->bus()->bus();
        sd_bus_message* reply = nullptr;
        std::uint32_t pid = 0;
        if (sd_bus_call_method(bus, "org.freedesktop.DBus", "/org/freedesktop/DBus",
                               "org.freedesktop.DBus", "GetConnectionUnixProcessID", nullptr,
                               &reply, "s", name.c_str()) >= 0) {
            sd_bus_message_read(reply, "u", &pid);
        }
        sd_bus_message_unref(reply);
        return static_cast<pid_t>(pid);
    }

    bool vellumineRuns() {
        Platform::RunningApplication process;
        bool found = false;
        VLM::VLMController::FindVellumineProcess(process, found);
        if (found) {
            session.killLater(process.processID);
        }
        return found;
    }

    void launch() {
        ASSERT_EQ(VLM::VLMController::LaunchVellumine(), 0);
        ASSERT_TRUE(VlmTest::waitFor([&] { return vellumineRuns(); }));
    }

    bool waitForHostEvent(const std::string& event) {
        return VlmTest::waitFor([&] {
            host->bus()->processPending();
            return std::find(hostEvents.begin(), hostEvents.end(), event) != hostEvents.end();
        });
    }

    int runToEnd(const std::vector<std::string>& argv) {
        const pid_t pid = session.spawn(argv);
        int status = -1;
        const bool ended = VlmTest::waitFor([&] { return waitpid(pid, &status, WNOHANG) == pid; });
        return ended && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    std::string sendRaw(const std::string& text) {
        std::string reply;
        const int status = host->bus()->send("VLMQ", {"VLMQ", "****", text}, reply);
        return status == Platform::Status::ok ? reply : "status " + std::to_string(status);
    }

    // The server still answers an ordinary request.
    bool servesOn() {
        return sendRaw("<cmd>fontRequest</cmd>\n<font>\n<psName>DejaVuSans</psName>\n</font>\n"
                       "</cmd>\n")
                   .find("<count>1</count>") != std::string::npos;
    }

    VlmTest::PrivateSession session;
    // Scans only the session's font folder, vellumine's own activation folder included, for
    // vellumine (started from here) as for PrivateFontconfig::facesNamed(): no system fonts.
    PrivateFontconfig fontconfig{{session.dataHome() + "/fonts"}};
    std::unique_ptr<Platform::Linux::DefaultServices> host;
    std::vector<std::string> hostEvents;
};

TEST_F(VellumineSession, LaunchedThroughItsDesktopEntryItAnswersAndASecondServerRefuses) {
    ASSERT_FALSE(vellumineRuns());
    launch();

    VLM::VLMFontRequestEvent request;
    // What the plug-in makes of each reply is tested in memory; here, that one crosses the bus.
    request.fonts = {makeFont("present", "NimbusRoman-Regular", 0), makeFont("absent", "Missing")};
    request.build();
    ASSERT_NE(request.send(), nullptr) << request.getResult();
    EXPECT_EQ(request.getProtocolVersion(), "2.0");
    EXPECT_EQ(std::to_string(request.fonts[0]->font.count) + " " +
                  std::to_string(request.fonts[1]->font.count),
              "2 0");

    EXPECT_EQ(runToEnd({VELLUMINE_EXECUTABLE, "serve"}), 3); // a second server refuses
    EXPECT_NE(sendRaw("<cmd>buyRequest</cmd>\n</cmd>\n").find("buyReply"), std::string::npos);
}

// The request names the host as a target for changes, from the plug-in or the command line.
TEST_F(VellumineSession, ActivationMakesFontconfigListTheFaceAndTellsTheHost) {
    launch();
    ASSERT_EQ(fontconfig.facesNamed("NimbusRoman-Regular"), 0);
    VLM::VLMFontRequestEvent request;
    request.fonts = {makeFont("1", "NimbusRoman-Regular", 2)};
    request.build();
    ASSERT_NE(request.send(), nullptr);
    VLM::VLMFontActivateEvent activate;
    activate.fonts = request.fonts; // activates typeMatchingContainerID
    activate.build();
    activate.send();

    EXPECT_EQ(fontconfig.facesNamed("NimbusRoman-Regular"), 1);
    EXPECT_TRUE(waitForHostEvent("VLM4/FSBC"));
    request.send();
    EXPECT_TRUE(request.fonts[0]->font.isTypeMatchingActive);

    // A change made by another vellumine process reaches the host too.
    EXPECT_EQ(runToEnd({VELLUMINE_EXECUTABLE, "add", urwOpenTypeFolder.string()}), 0);
    EXPECT_TRUE(waitForHostEvent("VLM4/FFSC"));
}

// No choice to make: the reply already reports the font active, fontconfig lists it, the
// host hears of it, and the user can take back what vellumine did on its own.
TEST_F(VellumineSession, AFontRequestActivatesWhatNeedsNoChoiceAndTellsTheHost) {
    launch();
    VLM::VLMFontRequestEvent request;
    request.fonts = {makeFont("1", "DejaVuSans"), makeFont("2", "NimbusRoman-Regular")};
    request.build();
    ASSERT_NE(request.send(), nullptr) << request.getResult();
    EXPECT_TRUE(request.fonts[0]->font.isActive);
    EXPECT_TRUE(request.fonts[0]->font.isTypeMatchingActive);
    EXPECT_FALSE(request.fonts[1]->font.isActive); // two candidates: the user chooses
    EXPECT_TRUE(request.showWindow);
    EXPECT_EQ(fontconfig.facesNamed("DejaVuSans"), 1);
    EXPECT_EQ(fontconfig.facesNamed("NimbusRoman-Regular"), 0);
    EXPECT_TRUE(waitForHostEvent("VLM4/FSBC"));

    EXPECT_EQ(runToEnd({VELLUMINE_EXECUTABLE, "deactivate", "--auto"}), 0);
    EXPECT_EQ(fontconfig.facesNamed("DejaVuSans"), 0);
}

// Hostile or oversized requests get a reply and the server serves on. Replies that would not
// fit into one bus message: a family of several faces asked for tens of thousands of times is
// answered without the face lists; values that grow when written (each "<" becomes a CDATA
// section) are refused.
TEST_F(VellumineSession, HostileRequestsAndRepliesTooBigForTheBusAreAnsweredWithinTheLimit) {
    launch();
    // (Text that is not UTF-8 never arrives: the bus refuses to carry it.)
    for (const std::string& text :
         {std::string(), std::string(20 * 1024 * 1024, 'x'),
          std::string("<?xml version=\"1.0\"?><!DOCTYPE l [<!ENTITY a \"aaaaaaaaaa\"><!ENTITY b "
                      "\"&a;&a;&a;&a;&a;&a;&a;&a;\">]><cmd>&b;</cmd>")}) {
        const std::string reply = sendRaw(text);
        EXPECT_EQ(reply.rfind("<cmd>", 0), 0u) << reply.substr(0, 100);
    }
    std::string unhandled;
    EXPECT_EQ(host->bus()->send("VLMQ", {"XXXX", "****", "hello"}, unhandled),
              Platform::Status::notHandled);
    const auto manyFonts = [](const std::string& font) {
        std::string text = "<cmd>fontRequest</cmd>\n";
        for (int i = 0; i < 40000; ++i) {
            text += "<font>\n" + font + "</font>\n";
        }
        return text + "</cmd>\n";
    };
    std::string growing;
    for (int i = 0; i < 150; ++i) {
        growing += "<a";
    }
    const std::string family = sendRaw(manyFonts("<psName>NimbusRoman-Regular</psName>\n"));
    EXPECT_TRUE(family.starts_with("<cmd>fontReply</cmd>")) << family.substr(0, 200);
    EXPECT_EQ(family.find("<fontInfo>"), std::string::npos);
    EXPECT_NE(family.find("<count>2</count>"), std::string::npos);
    const std::string refused = sendRaw(manyFonts("<syncID>" + growing + "</syncID>\n"));
    EXPECT_TRUE(refused.starts_with("<cmd>errorReply</cmd>")) << refused.substr(0, 200);
    EXPECT_NE(refused.find("ask for fewer fonts"), std::string::npos);

    EXPECT_TRUE(servesOn());
}

// A font request is one application's wish: what vellumine activated for Galley goes soon
// after Galley leaves the bus (unless the user turned that off); the user's own stays.
TEST_F(VellumineSession, FacesActivatedForAnApplicationGoAfterItLeavesTheBus) {
    launch();
    ASSERT_EQ(runToEnd({VELLUMINE_EXECUTABLE, "activate", "1"}), 0); // NimbusRoman-Regular.t1
    ASSERT_NE(requestFrom("DejaVuSans").find("<isActive>true</isActive>"), std::string::npos);
    ASSERT_EQ(fontconfig.facesNamed("DejaVuSans"), 1);

    host.reset(); // Galley quits
    EXPECT_TRUE(VlmTest::waitFor([&] { return fontconfig.facesNamed("DejaVuSans") == 0; }));
    EXPECT_EQ(fontconfig.facesNamed("NimbusRoman-Regular"), 1);

    hostReturns();
    requestFrom("DejaVuSans");
    EXPECT_EQ(runToEnd({VELLUMINE_EXECUTABLE, "config", "auto-deactivate", "off"}), 0);
    host.reset();
    std::this_thread::sleep_for(std::chrono::milliseconds(1500)); // five grace periods
    EXPECT_EQ(fontconfig.facesNamed("DejaVuSans"), 1);
}

// A desktop notification server of the test's own: records what vellumine announces.
class NotificationServer {
public:
    struct Notification {
        std::uint32_t replaces;
        std::string summary, body;
    };

    NotificationServer() {
        sd_bus_open_user(&bus);
        sd_bus_add_object_vtable(bus, nullptr, "/org/freedesktop/Notifications",
                                 "org.freedesktop.Notifications", vtable, this);
        owned = sd_bus_request_name(bus, "org.freedesktop.Notifications", 0) >= 0;
    }
    ~NotificationServer() { sd_bus_flush_close_unref(bus); }

    bool received(std::size_t count) {
        return VlmTest::waitFor([&] {
            while (sd_bus_process(bus, nullptr) > 0) {
            }
            return notifications.size() >= count;
        });
    }

    bool owned = false;
    std::vector<Notification> notifications;

private:
    static int notify(sd_bus_message* message, void* userdata, sd_bus_error*) {
        auto* self = static_cast<NotificationServer*>(userdata);
        const char *application, *icon, *summary, *body;
        std::uint32_t replaces = 0;
        sd_bus_message_read(message, "susss", &application, &replaces, &icon, &summary, &body);
        self->notifications.push_back({replaces, summary, body});
        return sd_bus_reply_method_return(message, "u",
                                          static_cast<std::uint32_t>(self->notifications.size()));
    }
    static constexpr sd_bus_vtable vtable[] = {
        SD_BUS_VTABLE_START(0),
        SD_BUS_METHOD("Notify", "susssasa{sv}i", "u", notify, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_VTABLE_END};
    sd_bus* bus = nullptr;
};

TEST_F(VellumineSession, EachAutomaticActivationIsOneNotificationReplacingThePrevious) {
    NotificationServer desktop;
    ASSERT_TRUE(desktop.owned);
    launch();
    requestFrom("DejaVuSans");
    ASSERT_TRUE(desktop.received(1));
    EXPECT_EQ(runToEnd({VELLUMINE_EXECUTABLE, "deactivate", "--auto"}), 0);
    requestFrom("DejaVuSans");
    ASSERT_TRUE(desktop.received(2));
    const auto& second = desktop.notifications[1];
    EXPECT_EQ(second.summary + " / " + second.body, "Fonts activated for Galley / DejaVuSans");
    EXPECT_EQ(desktop.notifications[0].replaces, 0u);
    EXPECT_EQ(second.replaces, 1u); // the first one's identifier
}

// An X server of the test's own (Xvfb), for what needs a display.
class VirtualDisplay {
public:
    explicit VirtualDisplay(VlmTest::PrivateSession& session) {
        for (int attempt = 0; attempt < 20 && name.empty(); ++attempt) {
            const int number = 100 + (getpid() + attempt * 37) % 800;
            const std::string socket = "/tmp/.X11-unix/X" + std::to_string(number);
            if (std::filesystem::exists(socket) ||
                std::filesystem::exists("/tmp/.X" + std::to_string(number) + "-lock")) {
                continue;
            }
            const pid_t pid = session.spawn({"/usr/bin/Xvfb", ":" + std::to_string(number),
                                             "-nolisten", "tcp", "-screen", "0", "1024x768x24"});
            if (VlmTest::waitFor([&] { return std::filesystem::exists(socket); },
                                 std::chrono::seconds(5)) &&
                kill(pid, 0) == 0) {
                name = ":" + std::to_string(number);
            }
        }
    }
    std::string name;
};

// With a display, a show request brings vellumine's window up on the face (started when it
// does not run, reused when it does) and a buy request opens the browser: on the vendor URL
// of a face the library holds, else on a store search for the name.
TEST_F(VellumineSession, ShowAndBuyReachTheWindowAndTheBrowserWhenThereIsADisplay) {
    if (!std::filesystem::exists("/usr/bin/Xvfb")) {
        GTEST_SKIP() << "Xvfb (Debian package xvfb) is not installed";
    }
    VirtualDisplay display(session);
    ASSERT_FALSE(display.name.empty());
    setenv("DISPLAY", display.name.c_str(), 1);
    ScratchFolder scratch;
    const auto opened = scratch.path() / "opened";
    const auto browser =
        scratch.write("browser", "#!/bin/sh\necho \"$1\" >>" + opened.string() + "\n");
    std::filesystem::permissions(browser, std::filesystem::perms::owner_all);
    setenv("BROWSER", browser.c_str(), 1);
    ASSERT_EQ(
        runToEnd({VELLUMINE_EXECUTABLE, "config", "store-url", "https://fonts.example.com/?q=%s"}),
        0);
    launch();

    const auto title = [&] {
        sd_bus_message* reply = nullptr;
        const char* text = "";
        std::string result;
        if (sd_bus_call_method(host->bus()->bus(), "org.vellumine.Vellumine.Window",
                               "/org/vellumine/Window", "org.vellumine.Window1", "Title", nullptr,
                               &reply, "") >= 0 &&
            sd_bus_message_read(reply, "s", &text) >= 0) {
            result = text;
        }
        sd_bus_message_unref(reply);
        return result;
    };
    const auto show = [&](const std::string& font) {
        return sendRaw("<cmd>showRequest</cmd>\n<targetApp>InDn</targetApp>\n<font>\n" + font +
                       "</font>\n</cmd>\n");
    };
    const std::string shown =
        show("<containerID>2</containerID>\n<psName>NimbusRoman-Regular</psName>\n");
    EXPECT_NE(shown.find("shown in vellumine's window"), std::string::npos) << shown;
    ASSERT_TRUE(
        VlmTest::waitFor([&] { return host->bus()->hasOwner("org.vellumine.Vellumine.Window"); }));
    session.killLater(ownerOf("org.vellumine.Vellumine.Window"));
    EXPECT_TRUE(VlmTest::waitFor([&] { return title() == "NimbusRoman-Regular — Vellumine"; }))
        << title();
    show("<psName>DejaVuSans</psName>\n");
    EXPECT_TRUE(VlmTest::waitFor([&] { return title() == "DejaVuSans — Vellumine"; })) << title();

    for (const char* font : {"DejaVuSans", "Imaginary Serif"}) {
        sendRaw(std::string("<cmd>buyRequest</cmd>\n<font>\n<psName>") + font +
                "</psName>\n</font>\n</cmd>\n");
    }
    // Each opens in a process of its own, so in either order.
    const std::set<std::string> expected = {"http://dejavu.sourceforge.net",
                                            "https://fonts.example.com/?q=Imaginary%20Serif"};
    const auto openedLines = [&] {
        std::set<std::string> lines;
        std::istringstream text(readFile(opened));
        for (std::string line; std::getline(text, line);) {
            lines.insert(line);
        }
        return lines;
    };
    EXPECT_TRUE(VlmTest::waitFor([&] { return openedLines() == expected; })) << readFile(opened);
    unsetenv("BROWSER");
}

} // namespace
} // namespace Vellumine
