// The whole conversation on a private session bus: the plug-in's link finds vellumine's
// desktop entry, launches it, asks about and activates fonts; fontconfig on a private
// configuration sees the result; vellumine tells the host with VLM4 events.
#include "FontFixtures.h"
#include "PrivateSession.h"
#include "tests/support/FontRecords.h"

#include "fontmanager/SqliteCatalog.h"
#include "fontmanager/FaceReader.h"
#include "fontmanager/LauncherEntry.h"
#include "fontmanager/LibraryImporter.h"
#include "fontmanager/LibraryPaths.h"
#include "link/NotifiyHandlerFactory.h"
#include "link/VLMController.h"
#include "link/VLMFontActivateEvent.h"
#include "link/VLMFontRequestEvent.h"
#include "platform/Status.h"
#include "platform/linux/DBusAppEvents.h"
#include "platform/linux/DefaultServices.h"

#include <fontconfig/fontconfig.h>
#include <gtest/gtest.h>

#include <fstream>
#include <sys/wait.h>

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

    void TearDown() override { host.reset(); }

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

    // The faces fontconfig lists with this PostScript name, on the session's configuration.
    int fontconfigFaces(const std::string& postScriptName) {
        FcConfig* config = FcConfigCreate();
        FcConfigParseAndLoad(config, reinterpret_cast<const FcChar8*>(fontconfig.file().c_str()),
                             FcTrue);
        FcConfigBuildFonts(config);
        FcPattern* pattern = FcPatternCreate();
        FcPatternAddString(pattern, FC_POSTSCRIPT_NAME,
                           reinterpret_cast<const FcChar8*>(postScriptName.c_str()));
        FcObjectSet* objects = FcObjectSetBuild(FC_FILE, nullptr);
        FcFontSet* fonts = FcFontList(config, pattern, objects);
        const int count = fonts != nullptr ? fonts->nfont : -1;
        FcFontSetDestroy(fonts);
        FcObjectSetDestroy(objects);
        FcPatternDestroy(pattern);
        FcConfigDestroy(config);
        return count;
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
    // vellumine (started from here) as for fontconfigFaces(): no system fonts.
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
    ASSERT_EQ(fontconfigFaces("NimbusRoman-Regular"), 0);
    VLM::VLMFontRequestEvent request;
    request.fonts = {makeFont("1", "NimbusRoman-Regular", 2)};
    request.build();
    ASSERT_NE(request.send(), nullptr);
    VLM::VLMFontActivateEvent activate;
    activate.fonts = request.fonts; // activates typeMatchingContainerID
    activate.build();
    activate.send();

    EXPECT_EQ(fontconfigFaces("NimbusRoman-Regular"), 1);
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
    EXPECT_EQ(fontconfigFaces("DejaVuSans"), 1);
    EXPECT_EQ(fontconfigFaces("NimbusRoman-Regular"), 0);
    EXPECT_TRUE(waitForHostEvent("VLM4/FSBC"));

    EXPECT_EQ(runToEnd({VELLUMINE_EXECUTABLE, "deactivate", "--auto"}), 0);
    EXPECT_EQ(fontconfigFaces("DejaVuSans"), 0);
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

} // namespace
} // namespace Vellumine
