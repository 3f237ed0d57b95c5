// A workstation's `vellumine serve` on a studio's library, on a private session bus: another
// workstation's change reaches the applications here through the database, and the server
// lives through the database going away and coming back.
#include "FontFixtures.h"
#include "PrivatePostgres.h"
#include "PrivateSession.h"
#include "tests/support/FontRecords.h"

#include "fontmanager/FaceReader.h"
#include "fontmanager/LibraryChanges.h"
#include "fontmanager/LibraryImporter.h"
#include "fontmanager/PostgresCatalog.h"
#include "link/NotifiyHandlerFactory.h"
#include "link/VLMFontRequestEvent.h"
#include "platform/Status.h"
#include "platform/linux/DBusAppEvents.h"
#include "platform/linux/DefaultServices.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace Vellumine {
namespace {

using namespace VellumineTest;
using namespace std::chrono_literals;

int recordEvent(const Platform::AppEvent& event, std::string&, void* refcon) {
    static_cast<std::vector<std::string>*>(refcon)->push_back(event.eventClass + "/" +
                                                              event.eventID);
    return Platform::Status::ok;
}

class StudioSession : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(session.ok()) << session.error();
        if (stopsTheDatabase()) {
            ownCluster = std::make_unique<PrivatePostgres>();
            cluster = ownCluster.get();
        }
        if (!cluster->available()) {
            GTEST_SKIP() << cluster->whyNot();
        }
        library = LibraryLocation::parse(cluster->createDatabase(), "test");
        setenv("VELLUMINE_LIBRARY", library.url.c_str(), 1);
        setenv("VELLUMINE_MACHINE_ID", "workstation-here", 1);
        otherWorkstation = std::make_unique<PostgresCatalog>(library, "workstation-there");
        LibraryImporter(*otherWorkstation, reader).add({dejaVuSans});

        int status = 0;
        host = Platform::Linux::DefaultServices::install("org.galley.Galley", status);
        ASSERT_EQ(status, Platform::Status::ok);
        host->bus()->installHandler("VLM4", "****", recordEvent, &hostEvents);
        VLM::NotifiyHandlerFactory::getNotifyHandler(true);
        session.spawn({VELLUMINE_EXECUTABLE, "serve"});
        // The request also names the host, which from then on hears of changes.
        ASSERT_TRUE(VlmTest::waitFor([&] { return answersFor("DejaVuSans"); }));
    }
    // A test that stops the database has a cluster of its own: others share the run's.
    virtual bool stopsTheDatabase() const { return false; }

    void TearDown() override {
        unsetenv("VELLUMINE_LIBRARY");
        unsetenv("VELLUMINE_MACHINE_ID");
    }

    bool answersFor(const std::string& postScriptName) {
        std::string reply;
        const std::string request =
            "<cmd>fontRequest</cmd>\n<targetApp>InDn</targetApp>\n<font>\n<psName>" +
            postScriptName + "</psName>\n</font>\n</cmd>\n";
        return host->bus()->send("VLMQ", {"VLMQ", "****", request}, reply) ==
                   Platform::Status::ok &&
               reply.find("<count>1</count>") != std::string::npos;
    }

    // The other workstation adds a face as `vellumine add` does there: the journal entry
    // and its notification go through the database only.
    void addElsewhere(const std::filesystem::path& file) {
        LibraryImporter(*otherWorkstation, reader).add({file});
        otherWorkstation->recordChange(ChangeKind::libraryFilesChanged);
    }

    bool hostHears(const std::string& event, std::chrono::milliseconds within) {
        return VlmTest::waitFor(
            [&] {
                host->bus()->processPending();
                return std::find(hostEvents.begin(), hostEvents.end(), event) != hostEvents.end();
            },
            within);
    }

    std::unique_ptr<PrivatePostgres> ownCluster; // outlives the session's server
    VlmTest::PrivateSession session;
    PrivateFontconfig fontconfig{{session.dataHome() + "/fonts"}};
    PrivatePostgres* cluster = &PrivatePostgres::shared();
    LibraryLocation library;
    FaceReader reader;
    std::unique_ptr<PostgresCatalog> otherWorkstation;
    std::unique_ptr<Platform::Linux::DefaultServices> host;
    std::vector<std::string> hostEvents;
};

TEST_F(StudioSession, AFaceAddedOnAnotherWorkstationReachesTheApplicationsHereWithinASecond) {
    hostEvents.clear();
    addElsewhere(dejaVuSerif);
    EXPECT_TRUE(hostHears("VLM4/FFSC", 1000ms));
    EXPECT_TRUE(answersFor("DejaVuSerif"));
}

// The main road: the plug-in asks this workstation's server for a font another
// workstation added from a file that no longer exists anywhere; fontconfig lists it here.
TEST_F(StudioSession, ThePluginsRequestActivatesAFontAddedElsewhereFromItsBytesAlone) {
    ScratchFolder elsewhere;
    addElsewhere(elsewhere.write("Serif.ttf", readFile(dejaVuSerif)));
    std::filesystem::remove(elsewhere.path() / "Serif.ttf");

    VLM::VLMFontRequestEvent request;
    request.fonts = {VLMTest::makeFont("1", "DejaVuSerif")};
    request.build();
    ASSERT_NE(request.send(), nullptr) << request.getResult();
    EXPECT_TRUE(request.fonts[0]->font.isActive);
    EXPECT_EQ(fontconfig.facesNamed("DejaVuSerif"), 1);
}

TEST_F(StudioSession, AFaceRemovedOnAnotherWorkstationIsDeactivatedHereToo) {
    // The request in SetUp activated it here: one face, no choice.
    const auto link =
        std::filesystem::path(session.dataHome()) / "fonts" / "vellumine" / "1-DejaVuSans.ttf";
    ASSERT_FALSE(absent(link));
    hostEvents.clear();
    otherWorkstation->removeFace(1);
    otherWorkstation->recordChange(ChangeKind::libraryFilesChanged);
    EXPECT_TRUE(VlmTest::waitFor([&] { return absent(link); }, 1000ms));
    EXPECT_TRUE(hostHears("VLM4/FSBC", 1000ms));
    EXPECT_FALSE(answersFor("DejaVuSans"));
}

class StudioSessionStoppingTheDatabase : public StudioSession {
protected:
    bool stopsTheDatabase() const override { return true; }
};

TEST_F(StudioSessionStoppingTheDatabase, TheServerAnswersFromWhatItLastKnewWhileItIsAway) {
    cluster->stop();
    EXPECT_TRUE(answersFor("DejaVuSans")); // as it answered before
    std::string reply;
    host->bus()->send("VLMQ",
                      {"VLMQ", "****",
                       "<cmd>fontRequest</cmd>\n<font>\n<psName>NeverAsked</psName>\n</font>\n"
                       "</cmd>\n"},
                      reply);
    EXPECT_NE(reply.find("unreachable"), std::string::npos) << reply;
    cluster->start();
    EXPECT_TRUE(VlmTest::waitFor([&] { return answersFor("DejaVuSans"); }));
    otherWorkstation = std::make_unique<PostgresCatalog>(library, "workstation-there");
    // The server listens again a few seconds after the database returned.
    hostEvents.clear();
    EXPECT_TRUE(VlmTest::waitFor(
        [&] {
            addElsewhere(dejaVuSerif);
            return hostHears("VLM4/FFSC", 200ms);
        },
        10s));
}

} // namespace
} // namespace Vellumine
