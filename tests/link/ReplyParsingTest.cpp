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

    // Sends the event for the records; whether the reply was accepted.
    template <typename Event>
    static bool send(Event& event, const VLMFontList& fonts) {
        event.fonts = fonts;
        event.build();
        return event.send() != nullptr;
    }

    static std::string version(const std::string& text) {
        return "<protocolVersion>" + text + "</protocolVersion>";
    }
};

// The version check itself is pinned in ProtocolVersion; here, that replies go through it.
TEST_F(ReplyParsing, AcceptsProtocolVersionTwoAndLaterOnly) {
    const std::pair<std::string, bool> replies[] = {{replyLines({version("10.0")}), true},
                                                    {replyLines({version("2")}), true},
                                                    {replyLines({version("1.99")}), false},
                                                    {replyLines({"<count>1</count>"}), false},
                                                    {"", false}};
    for (const auto& [reply, accepted] : replies) {
        answer(reply);
        VLM::VLMFontBuyEvent event;
        EXPECT_EQ(send(event, {}), accepted) << reply;
        EXPECT_EQ(event.hasSucceeded(), accepted) << reply;
    }
}

TEST_F(ReplyParsing, MergesEveryProtocolFieldBySyncID) {
    auto record = makeFont("12", "Minion-Regular", 0);
    record->hostFontName = "Minion Regular";
    record->selectedContainerID = "-1";
    answer(replyLines(
        {version("2.0"), "<showWindow>1</showWindow>",
         "<font><syncID>12</syncID><psName>Minion-Regular</psName><type>OT_T1</type>"
         "<familyName>Smith & Sons</familyName><styleName>Regular</styleName><count>3</count>"
         "<isActive>true</isActive><typeMatchingCount>2</typeMatchingCount>"
         "<isTypeMatchingActive>false</isTypeMatchingActive>"
         "<typeMatchingContainerID>77</typeMatchingContainerID>"
         "<fontInfo><label>Foundry</label><value>Tamrik</value></fontInfo>"
         "<fontInfo><label>Version</label><value>1.2</value></fontInfo>"
         "<containerID>78</containerID><activationSuccessfull>true</activationSuccessfull></"
         "font>"}));
    VLM::VLMFontRequestEvent event;
    ASSERT_TRUE(send(event, {record}));
    ASSERT_EQ(platform.appEvents.sent().size(), 1u);
    const auto& sent = platform.appEvents.sent()[0];
    EXPECT_EQ(sent.signature + " " + sent.event.eventClass + "/" + sent.event.eventID,
              "VLMQ VLMQ/****");
    EXPECT_EQ(sent.event.text, event.getMessage());

    const Protocol::Font& f = record->font;
    EXPECT_EQ(std::tie(f.type, f.familyName, f.styleName, f.count, f.isActive, f.typeMatchingCount,
                       f.isTypeMatchingActive, f.typeMatchingContainerID, f.containerID,
                       f.activationSuccessfull),
              std::make_tuple(2, "Smith & Sons", "Regular", 3u, true, 2u, false, "77", "78", true));
    ASSERT_EQ(f.fontInfo.size(), 2u);
    EXPECT_EQ(f.fontInfo[1].first + "=" + f.fontInfo[1].second, "Version=1.2");
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
                       "<font><syncID>99</syncID><count>4</count></font>",
                       "<showWindow>true</showWindow>"})); // read as a number: false
    VLM::VLMFontRequestEvent event;
    ASSERT_TRUE(send(event, {first, twin, unanswered}));
    EXPECT_EQ(std::tie(first->font.count, twin->font.count, first->hasTypeMatching),
              std::make_tuple(1u, 1u, false));
    EXPECT_EQ(std::tie(unanswered->font.type, unanswered->font.count, unanswered->hasTypeMatching),
              std::make_tuple(1, 0u, true));
    EXPECT_FALSE(event.showWindow);
}

// A fault anywhere in the reply raises and merges nothing, even into fonts before it.
TEST_F(ReplyParsing, BadRepliesRaiseAndLeaveRecordsAlone) {
    const auto withFont = [](const std::string& element) {
        return replyLines({version("2.0"), "<font><syncID>1</syncID><count>4</count></font>",
                           "<font><syncID>2</syncID>" + element + "</font>",
                           "<font><syncID>3</syncID></font>"});
    };
    const struct {
        std::string reply;
        const char* message; // null: any exception of the XML parser
        unsigned long line;
        const char* file;
    } faults[] = {
        {withFont("<count>many</count>"), "could not parse <count> 'many'", 346, "VLMController"},
        {withFont("<typeMatchingCount></typeMatchingCount>"),
         "could not parse <typeMatchingCount> ''", 357, "VLMController"},
        {withFont("<weight>700</weight>"), "could not parse node in <font> 'weight'", 380,
         "VLMController"},
        {withFont("<type>CFF</type>"), "could not parse <font><type>CFF</type>...", 69, "protocol"},
        {"not xml at all", nullptr, 0, ""},
        {"<cmd><font></cmd>", nullptr, 0, ""},
        {std::string("\x01\xff", 2), nullptr, 0, ""},
        {replyLines({version("2.0"), "<font><syncID>1</syncID>"}), nullptr, 0, ""}};
    for (const auto& fault : faults) {
        auto record = makeFont("1", "Font");
        answer(fault.reply);
        VLM::VLMFontRequestEvent event;
        try {
            send(event, {record, makeFont("2", "Bad")});
            ADD_FAILURE() << fault.reply << " accepted";
        } catch (const Tamrik::Exception& error) {
            if (fault.message != nullptr) {
                EXPECT_EQ(error.getUserMessage(), fault.message);
                EXPECT_EQ(error.getLine(), fault.line);
                EXPECT_EQ(error.getFile(), fault.file);
                EXPECT_EQ(error.getCodeSnippet(), "");
            }
        }
        EXPECT_FALSE(event.hasSucceeded());
        EXPECT_EQ(record->font.count, 0u) << fault.reply;
    }
}

TEST_F(ReplyParsing, ActivationReplyIsNeverReported) {
    auto record = makeFont("1", "Font");
    record->font.containerID = "77";
    answer(
        replyLines({version("2.0"), "<font><containerID>77</containerID>"
                                    "<activationSuccessfull>true</activationSuccessfull></font>"}));
    VLM::VLMFontActivateEvent event;
    EXPECT_FALSE(send(event, {record}));
    EXPECT_FALSE(event.hasSucceeded());
    EXPECT_FALSE(record->font.activationSuccessfull);
    EXPECT_EQ(event.getProtocolVersion(), "2.0");
}

// Matched by PostScript name, first record only; the type read leniently.
TEST_F(ReplyParsing, ShowReplyCorrectsTypeAndCountByPostScriptName) {
    auto record = makeFont("1", "Minion", 0);
    auto twin = makeFont("2", "Minion", 0);
    auto other = makeFont("3", "Other", 1);
    answer(replyLines({version("2.0"), "<showWindow>1</showWindow>",
                       "<font><psName>Minion</psName><type>OT_TT</type><count>5</count></font>",
                       "<font><psName>Other</psName><type>cff</type></font>",
                       "<font><type>T1</type></font>",
                       "<font><psName>Nobody</psName><count>8</count></font>"}));
    VLM::VLMFontInfoEvent event;
    EXPECT_FALSE(send(event, {record, twin, other}));
    const auto typeAndCount = [](const auto& f) { return std::pair(f->font.type, f->font.count); };
    EXPECT_EQ(typeAndCount(record), std::pair(3, 5u));
    EXPECT_EQ(typeAndCount(twin), std::pair(0, 0u));
    EXPECT_EQ(typeAndCount(other), std::pair(4, 0u));
}

} // namespace
