#include "LinkFixture.h"

#include "foundation/Exception.h"
#include "link/NotifiyHandlerFactory.h"
#include "link/VLMFontActivateEvent.h"
#include "link/VLMFontBuyEvent.h"
#include "link/VLMFontInfoEvent.h"
#include "link/VLMFontRequestEvent.h"

namespace {

using VLMTest::makeFont;
using VLMTest::replyLines;

class ReplyParsing : public VLMTest::LinkTest {
protected:
    void SetUp() override { VLM::NotifiyHandlerFactory::getNotifyHandler(true); }

    void answer(const std::string& reply) { platform.appEvents.queueAnswer(0, reply); }

    // Sends a font request for the records and returns whether it succeeded.
    bool requestFonts(VLM::VLMFontRequestEvent& event, const VLMFontList& fonts) {
        event.fonts = fonts;
        event.build();
        return event.send() != nullptr;
    }

    static std::string version(const std::string& text) {
        return "<protocolVersion>" + text + "</protocolVersion>";
    }
};

TEST_F(ReplyParsing, AcceptsProtocolVersionTwoAndLater) {
    for (const char* accepted : {"2.0", "2", "2.7.1", "10.0"}) {
        answer(replyLines({version(accepted)}));
        VLM::VLMFontBuyEvent event;
        event.build();
        EXPECT_NE(event.send(), nullptr) << accepted;
        EXPECT_TRUE(event.hasSucceeded()) << accepted;
        EXPECT_EQ(event.getProtocolVersion(), accepted);
    }
    for (const char* rejected : {"1.99", "2.x", "abc", ""}) {
        answer(replyLines({version(rejected)}));
        VLM::VLMFontBuyEvent event;
        EXPECT_EQ(event.send(), nullptr) << rejected;
        EXPECT_FALSE(event.hasSucceeded()) << rejected;
    }
    answer(replyLines({"<count>1</count>"}));
    VLM::VLMFontBuyEvent withoutVersion;
    EXPECT_EQ(withoutVersion.send(), nullptr);
}

TEST_F(ReplyParsing, RequestCarriesTheBuiltTextToTheFontManager) {
    answer(replyLines({version("2.0")}));
    VLM::VLMFontRequestEvent event;
    requestFonts(event, {makeFont("1", "Font")});
    ASSERT_EQ(platform.appEvents.sent().size(), 1u);
    const auto& sent = platform.appEvents.sent()[0];
    EXPECT_EQ(sent.signature, "VLMQ");
    EXPECT_EQ(sent.event.eventClass, "VLMQ");
    EXPECT_EQ(sent.event.eventID, "****");
    EXPECT_EQ(sent.event.text, event.getMessage());
}

TEST_F(ReplyParsing, MergesEveryProtocolFieldBySyncID) {
    auto record = makeFont("12", "Minion-Regular", 0);
    record->hostFontName = "Minion Regular";
    record->selectedContainerID = "-1";
    answer(replyLines({version("2.0"), "<showWindow>1</showWindow>", "<font>",
                       "<syncID>12</syncID>", "<psName>Minion-Regular</psName>",
                       "<type>OT_T1</type>", "<familyName>Smith & Sons</familyName>",
                       "<styleName>Regular</styleName>", "<count>3</count>",
                       "<isActive>true</isActive>", "<typeMatchingCount>2</typeMatchingCount>",
                       "<isTypeMatchingActive>false</isTypeMatchingActive>",
                       "<typeMatchingContainerID>77</typeMatchingContainerID>",
                       "<fontInfo><label>Foundry</label><value>Tamrik</value></fontInfo>",
                       "<fontInfo><label>Version</label><value>1.2</value></fontInfo>",
                       "<containerID>78</containerID>",
                       "<activationSuccessfull>true</activationSuccessfull>", "</font>"}));
    VLM::VLMFontRequestEvent event;
    ASSERT_TRUE(requestFonts(event, {record}));

    const Protocol::Font& font = record->font;
    EXPECT_EQ(font.type, 2);
    EXPECT_EQ(font.familyName, "Smith & Sons");
    EXPECT_EQ(font.styleName, "Regular");
    EXPECT_EQ(font.count, 3u);
    EXPECT_TRUE(font.isActive);
    EXPECT_EQ(font.typeMatchingCount, 2u);
    EXPECT_FALSE(font.isTypeMatchingActive);
    EXPECT_EQ(font.typeMatchingContainerID, "77");
    ASSERT_EQ(font.fontInfo.size(), 2u);
    EXPECT_EQ(font.fontInfo[1].first, "Version");
    EXPECT_EQ(font.fontInfo[1].second, "1.2");
    EXPECT_EQ(font.containerID, "78");
    EXPECT_TRUE(font.activationSuccessfull);
    EXPECT_TRUE(record->hasTypeMatching);
    EXPECT_TRUE(event.showWindow);
    EXPECT_EQ(record->hostFontName, "Minion Regular");
    EXPECT_EQ(record->selectedContainerID, "-1");
}

TEST_F(ReplyParsing, FirstReplyFontAnswersEveryRecordOfItsSyncID) {
    auto first = makeFont("5", "A");
    auto twin = makeFont("5", "A");
    auto unanswered = makeFont("6", "B", 1);
    unanswered->hasTypeMatching = true;
    answer(replyLines({version("2.0"), "<font><syncID>5</syncID><count>1</count></font>",
                       "<font><syncID>5</syncID><count>9</count></font>",
                       "<font><syncID>99</syncID><count>4</count></font>"}));
    VLM::VLMFontRequestEvent event;
    ASSERT_TRUE(requestFonts(event, {first, twin, unanswered}));
    EXPECT_EQ(first->font.count, 1u);
    EXPECT_EQ(twin->font.count, 1u);
    EXPECT_FALSE(first->hasTypeMatching);
    EXPECT_EQ(unanswered->font.type, 1);
    EXPECT_EQ(unanswered->font.count, 0u);
    EXPECT_TRUE(unanswered->hasTypeMatching);
    EXPECT_FALSE(event.showWindow);
}

TEST_F(ReplyParsing, ShowWindowIsReadAsANumber) {
    answer(replyLines({version("2.0"), "<showWindow>true</showWindow>"}));
    VLM::VLMFontRequestEvent event;
    requestFonts(event, {});
    EXPECT_FALSE(event.showWindow);
}

struct Fault {
    const char* element;
    const char* message;
    unsigned long line;
    const char* file;
};

TEST_F(ReplyParsing, FaultAnywhereInTheReplyMergesNothing) {
    const Fault faults[] = {
        {"<count>many</count>", "could not parse <count> 'many'", 346, "VLMController"},
        {"<typeMatchingCount></typeMatchingCount>", "could not parse <typeMatchingCount> ''", 357,
         "VLMController"},
        {"<weight>700</weight>", "could not parse node in <font> 'weight'", 380, "VLMController"},
        {"<type>CFF</type>", "could not parse <font><type>CFF</type>...", 69, "protocol"}};
    for (const Fault& fault : faults) {
        auto good = makeFont("1", "Good");
        auto bad = makeFont("2", "Bad");
        answer(replyLines({version("2.0"), "<font><syncID>1</syncID><count>4</count></font>",
                           std::string("<font><syncID>2</syncID>") + fault.element + "</font>",
                           "<font><syncID>3</syncID></font>"}));
        VLM::VLMFontRequestEvent event;
        try {
            requestFonts(event, {good, bad});
            ADD_FAILURE() << fault.element << " accepted";
        } catch (const Tamrik::Exception& error) {
            EXPECT_EQ(error.getUserMessage(), fault.message);
            EXPECT_EQ(error.getLine(), fault.line);
            EXPECT_EQ(error.getFile(), fault.file);
            EXPECT_EQ(error.getCodeSnippet(), "");
        }
        EXPECT_EQ(good->font.count, 0u) << fault.element;
        EXPECT_EQ(bad->font.psName, "Bad");
    }
}

TEST_F(ReplyParsing, ReplyThatIsNotXmlRaisesAndLeavesRecordsAlone) {
    auto record = makeFont("1", "Font");
    for (const std::string& garbage :
         {std::string("not xml at all"), std::string("<cmd><font></cmd>"),
          std::string("\x01\xff", 2), replyLines({version("2.0"), "<font><syncID>1</syncID>"})}) {
        answer(garbage);
        VLM::VLMFontRequestEvent event;
        EXPECT_THROW(requestFonts(event, {record}), Tamrik::Exception);
        EXPECT_FALSE(event.hasSucceeded());
    }
    EXPECT_EQ(record->font.psName, "Font");
    EXPECT_EQ(record->font.count, 0u);
}

TEST_F(ReplyParsing, FailedExchangeIsAnEmptyResultNotAnError) {
    platform.appEvents.queueAnswer(0, "");
    auto record = makeFont("1", "Font");
    VLM::VLMFontRequestEvent event;
    EXPECT_FALSE(requestFonts(event, {record}));
    EXPECT_EQ(event.getResult(), "");
    EXPECT_EQ(record->font.count, 0u);
}

TEST_F(ReplyParsing, ActivationReplyIsNeverReported) {
    auto record = makeFont("1", "Font");
    record->font.containerID = "77";
    answer(
        replyLines({version("2.0"), "<font><containerID>77</containerID>"
                                    "<activationSuccessfull>true</activationSuccessfull></font>"}));
    VLM::VLMFontActivateEvent event;
    event.fonts = {record};
    event.build();
    EXPECT_EQ(event.send(), nullptr);
    EXPECT_FALSE(event.hasSucceeded());
    EXPECT_FALSE(record->font.activationSuccessfull);
    EXPECT_EQ(event.getProtocolVersion(), "2.0");
}

TEST_F(ReplyParsing, ShowReplyCorrectsTypeAndCountByPostScriptName) {
    auto record = makeFont("1", "Minion", 0);
    auto other = makeFont("2", "Other", 1);
    answer(replyLines({version("2.0"), "<showWindow>1</showWindow>",
                       "<font><psName>Minion</psName><type>OT_TT</type><count>5</count></font>",
                       "<font><psName>Other</psName><type>cff</type></font>",
                       "<font><type>T1</type></font>",
                       "<font><psName>Nobody</psName><count>8</count></font>"}));
    VLM::VLMFontInfoEvent event;
    event.fonts = {record, other};
    event.build();
    EXPECT_EQ(event.send(), nullptr);
    EXPECT_EQ(record->font.type, 3);
    EXPECT_EQ(record->font.count, 5u);
    EXPECT_EQ(other->font.type, 4);
    EXPECT_EQ(other->font.count, 0u);
}

} // namespace
