// vellumine's replies as the plug-in receives them: the plug-in's own requests, transport
// (line joining, "&" escaping) and reply parsers, with vellumine's dispatcher answering
// in memory instead of over the bus.
#include "FontFixtures.h"
#include "tests/support/FontRecords.h"

#include "fontmanager/FaceReader.h"
#include "fontmanager/LibraryImporter.h"
#include "fontmanager/RequestDispatcher.h"
#include "fontmanager/SqliteCatalog.h"
#include "link/NotifiyHandlerFactory.h"
#include "link/VLMFontActivateEvent.h"
#include "link/VLMFontBuyEvent.h"
#include "link/VLMFontInfoEvent.h"
#include "link/VLMFontRequestEvent.h"
#include "support/FakePlatform.h"

#include <gtest/gtest.h>

namespace Vellumine {
namespace {

using namespace VellumineTest;
using VLMTest::makeFont;

class PluginAcceptance : public testing::Test {
protected:
    void SetUp() override {
        FaceReader reader;
        LibraryImporter(catalog, reader).add({nimbusRomanType1, nimbusRomanOpenType, dejaVuSans});
        platform.appEvents.setResponder([this](const Platform::AppEvent& event) {
            return VLMTest::FakeAppEvents::Answer{0, answering->answer(event.text)};
        });
        VLM::NotifiyHandlerFactory::getNotifyHandler(true);
    }

    VLMTest::FakePlatform platform;
    PrivateFontconfig noSystemFonts;
    ScratchFolder scratch;
    SqliteCatalog catalog{scratch.path() / "library.db"};
    Activation activation{catalog, scratch.path() / "fonts" / "vellumine"};
    LibraryChanges changes{catalog, [](const std::string&) { return 0; }};
    RequestDispatcher dispatcher{catalog, activation, changes};
    RequestDispatcher* answering = &dispatcher;
};

// What the plug-in made of one font of a reply, in a line that names every figure.
std::string merged(const Tamrik::SmartPointer<VLMFontInfo>& record) {
    const Protocol::Font& font = record->font;
    return "count=" + std::to_string(font.count) +
           " typeMatching=" + std::to_string(font.typeMatchingCount) +
           (record->hasTypeMatching ? " hasTypeMatching" : "") +
           " type=" + std::to_string(font.type) + (font.isActive ? " active" : "") +
           (font.isTypeMatchingActive ? " typeMatchingActive" : "");
}

TEST_F(PluginAcceptance, FontRequestRepliesMergeIntoTheRecords) {
    VLM::VLMFontRequestEvent request;
    request.fonts = {makeFont("1", "NimbusRoman-Regular", 0), makeFont("2", "DejaVuSans", 2),
                     makeFont("3", "Missing-Font")};
    request.build();
    ASSERT_NE(request.send(), nullptr) << request.getResult();
    EXPECT_FALSE(request.showWindow);

    const auto type1Faces = catalog.facesByPostScriptName("NimbusRoman-Regular");
    EXPECT_EQ(merged(request.fonts[0]), "count=2 typeMatching=1 hasTypeMatching type=0 active "
                                        "typeMatchingActive"); // the only Type 1: activated
    EXPECT_EQ(merged(request.fonts[1]), "count=1 typeMatching=0 type=2");
    EXPECT_EQ(merged(request.fonts[2]), "count=0 typeMatching=0 type=4");
    const Protocol::Font& type1 = request.fonts[0]->font;
    EXPECT_EQ(type1.familyName, "Nimbus Roman");
    EXPECT_EQ(type1.typeMatchingContainerID, std::to_string(type1Faces.at(0).id));
    ASSERT_EQ(type1.fontInfo.size(), 2u);
    EXPECT_EQ(type1.fontInfo[1].first, std::to_string(type1Faces.at(1).id));
    EXPECT_EQ(type1.fontInfo[1].second, type1Faces.at(1).file.filename().string() + " in " +
                                            type1Faces.at(1).file.parent_path().string() +
                                            ", inactive");
}

// A font only the system has: active, of the requested type, with no container anywhere.
TEST_F(PluginAcceptance, AFontTheSystemHasMergesAsActiveWithoutContainer) {
    const PrivateFontconfig system({dejaVuFolder});
    VLM::VLMFontRequestEvent request;
    request.fonts = {makeFont("1", "DejaVuSansMono", 1)};
    request.build();
    ASSERT_NE(request.send(), nullptr) << request.getResult();
    const Protocol::Font& font = request.fonts[0]->font;
    EXPECT_EQ(merged(request.fonts[0]),
              "count=1 typeMatching=1 hasTypeMatching type=1 active typeMatchingActive");
    EXPECT_EQ(font.containerID + font.typeMatchingContainerID, "");
    ASSERT_EQ(font.fontInfo.size(), 1u);
    EXPECT_EQ(font.fontInfo[0].first, "");
    EXPECT_FALSE(request.showWindow);
}

TEST_F(PluginAcceptance, HostileValuesComeBackAsTheyWereSent) {
    VLM::VLMFontRequestEvent request;
    for (const char* syncID : {"a&b", "a<b", "x</cmd>", "]]>", "&amp;", "&lt;", "<![CDATA[x]]>",
                               "a&<b>&c", "<!DOCTYPE x [<!ENTITY e \"boom\">]>&e;"}) {
        request.fonts.push_back(makeFont(syncID, "NimbusRoman-Regular"));
    }
    request.build();
    ASSERT_NE(request.send(), nullptr) << request.getResult();
    for (const auto& font : request.fonts) {
        EXPECT_EQ(font->font.count, 2u) << "not merged: " << font->font.syncID;
    }
    EXPECT_TRUE(request.showWindow); // two faces of any type, none active
}

TEST_F(PluginAcceptance, ActivationShowAndBuyRepliesPassThePluginsChecks) {
    const auto faces = catalog.facesByPostScriptName("NimbusRoman-Regular");
    VLM::VLMFontActivateEvent activate;
    activate.fonts = {makeFont("1", "NimbusRoman-Regular")};
    activate.fonts[0]->selectedContainerID = std::to_string(faces.at(1).id);
    activate.build();
    activate.send(); // the plug-in never reports a result for activations
    EXPECT_EQ(activate.getProtocolVersion(), "2.0");
    EXPECT_TRUE(catalog.face(faces.at(1).id)->active);

    VLM::VLMFontInfoEvent show;
    show.fonts = {makeFont("1", "DejaVuSans")};
    show.build();
    show.send();
    EXPECT_EQ(show.fonts[0]->font.count, 1u);
    EXPECT_EQ(show.fonts[0]->font.type, 1);

    VLM::VLMFontBuyEvent buy;
    buy.fonts = {makeFont("1", "Missing-Font")};
    buy.build();
    EXPECT_NE(buy.send(), nullptr);
}

TEST_F(PluginAcceptance, AnOlderAnnouncedVersionIsRejectedByThePlugin) {
    RequestDispatcher older(catalog, activation, changes, {"1.5", {}, {}});
    answering = &older;
    VLM::VLMFontRequestEvent request;
    request.fonts = {makeFont("1", "NimbusRoman-Regular")};
    request.build();
    EXPECT_EQ(request.send(), nullptr);
    EXPECT_EQ(request.getProtocolVersion(), "1.5");
    EXPECT_EQ(request.fonts[0]->font.count, 0u);
}

} // namespace
} // namespace Vellumine
