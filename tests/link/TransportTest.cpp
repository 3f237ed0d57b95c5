#include "LinkFixture.h"

#include "link/MacVLMNotifyHandler.h"
#include "link/NotifiyHandlerFactory.h"
#include "link/ReplyText.h"

#include <stdexcept>
#include <vector>

namespace {

using Platform::Status::notRunning;
using Platform::Status::ok;
using Platform::Status::timeout;
using Delays = std::vector<std::uint32_t>;

TEST(ReplyText, JoinsLinesDroppingLineEndingClosingTagsButTheLoneOne) {
    EXPECT_EQ(VLM::joinReplyLines("<cmd>x</cmd>\n<a>1</a>\n</cmd>"), "<cmd>x<a>1</a></cmd>");
    EXPECT_EQ(VLM::joinReplyLines("a</cmd>\n</cmd>\n"), "a</cmd>"); // 7 characters: dropped
    EXPECT_EQ(VLM::joinReplyLines("</cmd></cmd>"), "</cmd>");
    EXPECT_EQ(VLM::joinReplyLines("\n\n"), "");
    EXPECT_EQ(VLM::joinReplyLines("<a>\r\n</a>"), "<a>\r</a>");
    EXPECT_EQ(VLM::escapeAmpersands("&amp;&"), "&amp;amp;&amp;");
}

// Failed sends are retried 30 ticks apart, 20 times at most; an empty reply ends the
// exchange after one wait. The fake clock never sleeps.
TEST(Transport, RetriesThroughTheClock) {
    const struct {
        std::vector<std::pair<int, std::string>> answers; // then: not running
        std::string result;
        std::size_t sends;
        Delays delays;
    } rows[] = {{{{ok, "<cmd>r</cmd>\n<a>Smith & Sons</a>\n</cmd>\n"}},
                 "<cmd>r<a>Smith &amp; Sons</a></cmd>",
                 1,
                 {}},
                {{{timeout, ""}, {notRunning, ""}, {ok, "<cmd>r</cmd>\n</cmd>"}},
                 "<cmd>r</cmd>",
                 3,
                 {30, 30}},
                {{}, "", 20, Delays(20, 30)},
                {{{ok, ""}, {ok, "<cmd>never asked</cmd>\n</cmd>"}}, "", 1, {30}}};
    for (const auto& row : rows) {
        VLMTest::FakePlatform platform;
        for (const auto& [status, reply] : row.answers) {
            platform.appEvents.queueAnswer(status, reply);
        }
        EXPECT_EQ(VLM::MacVLMNotifyHandler().SendToVlm("request"), row.result);
        EXPECT_EQ(platform.appEvents.sent().size(), row.sends) << row.result;
        EXPECT_EQ(platform.clock.delays(), row.delays) << row.result;
    }
}

// Past a font manager's limits a reply is refused at the first attempt, before it is
// joined or parsed, and the user is told why; within them it passes as it came.
TEST(Transport, RefusesRepliesPastTheFontManagersLimits) {
    const auto font = [](std::size_t candidates, const std::string& info = "<fontInfo>") {
        std::string text = "<font>\n";
        for (std::size_t n = 0; n < candidates; ++n)
            text += info + "\n<containerID>" + std::to_string(n) + "</containerID>\n</fontInfo>\n";
        return text + "</font>\n";
    };
    const struct {
        std::string reply;
        std::string refusal; // empty: accepted
    } rows[] = {
        {font(100) + font(60), ""},
        {font(101, "<fontInfo\n>"), "a font in it lists 101 candidates, more than the 100 a font "
                                     "manager sends"},
        {font(101, "<![CDATA[<fontInfo>]]><fontInfoX>"), ""},
        {font(101, "<!-- <fontInfo> -->"), ""},
        // With the reply's opening and closing lines, one byte past the limit.
        {std::string(VLM::maxReplyBytes - 27, ' '), "it holds 16777217 bytes, more than the 16 "
                                                   "MiB a font manager sends"},
    };
    for (const auto& row : rows) {
        VLMTest::FakePlatform platform;
        platform.appEvents.queueAnswer(ok, "<cmd>fontReply</cmd>\n" + row.reply + "</cmd>\n");
        const std::string result = VLM::MacVLMNotifyHandler().SendToVlm("request");
        EXPECT_EQ(result.empty(), !row.refusal.empty()) << row.refusal;
        EXPECT_EQ(platform.appEvents.sent().size(), 1u) << row.refusal;
        EXPECT_EQ(platform.clock.delays(), Delays{}) << row.refusal;
        EXPECT_EQ(platform.appEvents.refusals,
                  row.refusal.empty() ? std::vector<std::string>{}
                                      : std::vector<std::string>{"VLMQ: " + row.refusal});
    }
}

TEST(Transport, ExceptionsStayInsideTheTransport) {
    VLMTest::FakePlatform platform;
    platform.appEvents.setResponder(
        [](const Platform::AppEvent&) -> VLMTest::FakeAppEvents::Answer {
            throw std::runtime_error("bus gone");
        });
    VLM::MacVLMNotifyHandler handler;
    // Thrown at the first attempt, nothing failed before: the exchange ends empty.
    EXPECT_EQ(handler.SendToVlm("request"), "");
    EXPECT_EQ(platform.clock.delays().size(), 1u);
    // After a failed send, throwing sends count as attempts and the limit still holds.
    platform.appEvents.queueAnswer(notRunning, "");
    EXPECT_EQ(handler.SendToVlm("request"), "");
    EXPECT_EQ(platform.appEvents.sent().size(), 1u + 20u);
}

class Registry : public ::testing::Test {
protected:
    std::vector<std::string> heard;
    VLMTest::Listener a{heard, "a:"};
    VLMTest::Listener b{heard, "b:"};
    VLM::MacVLMNotifyHandler registry;
};

TEST_F(Registry, ChangesTakeEffectAtTheNextBroadcastRemovalsFirst) {
    registry.registerNotifer(&a);
    registry.registerNotifer(&a);
    registry.unregisterNotifer(&a); // removals first: found nothing yet, so a stays twice
    registry.notifiyAll("one");
    registry.unregisterNotifer(&a);
    registry.notifiyAll("two");
    EXPECT_EQ(heard, (std::vector<std::string>{"a:one", "a:one", "a:two"}));
    EXPECT_EQ(registry.activeNotifiers().size(), 1u);
}

TEST_F(Registry, ClearIsImmediateButPendingChangesSurviveIt) {
    registry.registerNotifer(&a);
    registry.notifiyAll("one");
    registry.registerNotifer(&b);
    registry.clearNotifiers();
    registry.notifiyAll("two");
    EXPECT_EQ(heard, (std::vector<std::string>{"a:one", "b:two"}));
}

TEST_F(Registry, ListenersMayChangeTheRegistryWhileBeingNotified) {
    registry.registerNotifer(&a);
    registry.registerNotifer(&b);
    a.duringNotify = [&] {
        registry.unregisterNotifer(&a);
        registry.clearNotifiers();
    };
    registry.notifiyAll("one");
    registry.notifiyAll("two");
    EXPECT_EQ(heard, (std::vector<std::string>{"a:one"}));
}

TEST_F(Registry, RenewingTheTransportRetiresTheOldOneWithoutDestroyingIt) {
    VLM::IVLMNotifyHandler* first = VLM::NotifiyHandlerFactory::getNotifyHandler(false);
    EXPECT_EQ(VLM::NotifiyHandlerFactory::getNotifyHandler(false), first);
    first->registerNotifer(&a);
    const std::size_t retiredBefore = VLM::NotifiyHandlerFactory::retiredCount();
    EXPECT_NE(VLM::NotifiyHandlerFactory::getNotifyHandler(true), first);
    EXPECT_EQ(VLM::NotifiyHandlerFactory::retiredCount(), retiredBefore + 1);
    first->notifiyAll("still alive");
    EXPECT_EQ(heard, std::vector<std::string>{"a:still alive"});
}

} // namespace
