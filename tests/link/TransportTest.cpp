#include "LinkFixture.h"

#include "link/MacVLMNotifyHandler.h"
#include "link/NotifiyHandlerFactory.h"
#include "link/ReplyText.h"
#include "link/VLMChangeNotifier.h"

#include <functional>
#include <stdexcept>
#include <vector>

namespace {

using Platform::Status::notRunning;
using Platform::Status::ok;
using Platform::Status::timeout;

class Transport : public VLMTest::LinkTest {
protected:
    VLM::MacVLMNotifyHandler handler;
};

TEST_F(Transport, JoinsReplyLinesAndEscapesAmpersands) {
    platform.appEvents.queueAnswer(ok, "<cmd>fontReply</cmd>\n"
                                       "<protocolVersion>2.0</protocolVersion>\n"
                                       "<familyName>Smith & Sons</familyName>\n"
                                       "</cmd>\n");
    EXPECT_EQ(handler.SendToVlm("request"), "<cmd>fontReply<protocolVersion>2.0</protocolVersion>"
                                            "<familyName>Smith &amp; Sons</familyName></cmd>");
    EXPECT_EQ(platform.appEvents.sent().size(), 1u);
    EXPECT_TRUE(platform.clock.delays().empty());
}

TEST(ReplyText, DropsLineEndingClosingTagsButKeepsTheLoneOne) {
    EXPECT_EQ(VLM::joinReplyLines("<cmd>x</cmd>\n<a>1</a>\n</cmd>"), "<cmd>x<a>1</a></cmd>");
    EXPECT_EQ(VLM::joinReplyLines("a</cmd>\n</cmd>\n"), "a</cmd>"); // 7 characters: dropped
    EXPECT_EQ(VLM::joinReplyLines("</cmd></cmd>"), "</cmd>");
    EXPECT_EQ(VLM::joinReplyLines("\n\n"), "");
    EXPECT_EQ(VLM::joinReplyLines("<a>\r\n</a>"), "<a>\r</a>");
    EXPECT_EQ(VLM::escapeAmpersands("&amp;&"), "&amp;amp;&amp;");
}

TEST_F(Transport, GivesUpAfterTwentyFailedAttemptsWithoutSleeping) {
    platform.appEvents.setDefaultAnswer(notRunning, "");
    EXPECT_EQ(handler.SendToVlm("request"), "");
    EXPECT_EQ(platform.appEvents.sent().size(), 20u);
    EXPECT_EQ(platform.clock.delays(), std::vector<std::uint32_t>(20, 30));
    EXPECT_EQ(platform.clock.totalDelayTicks(), 600u); // ten seconds in ticks
}

TEST_F(Transport, RetriesUntilTheFontManagerAnswers) {
    platform.appEvents.queueAnswer(timeout, "");
    platform.appEvents.queueAnswer(notRunning, "");
    platform.appEvents.queueAnswer(ok, "<cmd>r</cmd>\n</cmd>");
    EXPECT_EQ(handler.SendToVlm("request"), "<cmd>r</cmd>");
    EXPECT_EQ(platform.appEvents.sent().size(), 3u);
    EXPECT_EQ(platform.clock.delays().size(), 2u);
}

TEST_F(Transport, EmptyReplyEndsTheExchangeAfterOneWait) {
    platform.appEvents.queueAnswer(ok, "");
    platform.appEvents.queueAnswer(ok, "<cmd>never asked</cmd>\n</cmd>");
    EXPECT_EQ(handler.SendToVlm("request"), "");
    EXPECT_EQ(platform.appEvents.sent().size(), 1u);
    EXPECT_EQ(platform.clock.delays(), std::vector<std::uint32_t>{30});
}

TEST_F(Transport, ExceptionsStayInsideTheTransport) {
    // Thrown at the first attempt, nothing failed before: the exchange ends empty.
    platform.appEvents.throwOnNextSends(1);
    EXPECT_EQ(handler.SendToVlm("request"), "");
    EXPECT_EQ(platform.clock.delays().size(), 1u);

    // After a failed send, throwing sends count as attempts and the limit still holds.
    platform.clock.reset();
    platform.appEvents.reset();
    platform.appEvents.queueAnswer(notRunning, "");
    platform.appEvents.setResponder(
        [](const Platform::AppEvent&) -> VLMTest::FakeAppEvents::Answer {
            throw std::runtime_error("bus gone");
        });
    EXPECT_EQ(handler.SendToVlm("request"), "");
    EXPECT_EQ(platform.appEvents.sent().size(), 20u);
}

// Records what it was told and can act on the registry from inside the broadcast.
class Listener : public VLM::IVLMChangeNotifier {
public:
    explicit Listener(std::vector<std::string>* log, std::string name)
        : log(log), name(std::move(name)) {}
    void OnVLMNotify(const std::string& text) override {
        log->push_back(name + ":" + text);
        if (duringNotify) {
            duringNotify();
        }
    }
    std::function<void()> duringNotify;

private:
    std::vector<std::string>* log;
    std::string name;
};

class Registry : public ::testing::Test {
protected:
    std::vector<std::string> heard;
    Listener a{&heard, "a"};
    Listener b{&heard, "b"};
    VLM::MacVLMNotifyHandler registry;
};

TEST_F(Registry, ChangesTakeEffectAtTheNextBroadcast) {
    registry.registerNotifer(&a);
    registry.registerNotifer(&a);
    registry.unregisterNotifer(&a); // removals first: found nothing yet, so a stays twice
    registry.notifiyAll("one");
    EXPECT_EQ(heard, (std::vector<std::string>{"a:one", "a:one"}));

    registry.unregisterNotifer(&a);
    registry.notifiyAll("two");
    EXPECT_EQ(heard.back(), "a:two");
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

TEST_F(Transport, IncomingEventsOfTheTwoChangeIDsReachTheListeners) {
    std::vector<std::string> heard;
    Listener listener(&heard, "l");
    handler.registerNotifer(&listener);
    std::string reply;
    for (const char* id : {"FSBC", "XXXX", "FFSC"}) {
        EXPECT_EQ(VLM::MacVLMNotifyHandler::HandleEvent({"VLM4", id, ""}, reply, &handler), ok);
    }
    EXPECT_EQ(heard, (std::vector<std::string>(2, "l:<cmd cmd=\"fontChanged\"></cmd>")));
    EXPECT_EQ(reply, "");
}

TEST(NotifyHandlerFactory, RenewRetiresTheOldTransportWithoutDestroyingIt) {
    VLM::IVLMNotifyHandler* first = VLM::NotifiyHandlerFactory::getNotifyHandler(false);
    EXPECT_EQ(VLM::NotifiyHandlerFactory::getNotifyHandler(false), first);
    std::vector<std::string> heard;
    Listener listener(&heard, "l");
    first->registerNotifer(&listener);
    const std::size_t retiredBefore = VLM::NotifiyHandlerFactory::retiredCount();

    VLM::IVLMNotifyHandler* second = VLM::NotifiyHandlerFactory::getNotifyHandler(true);
    EXPECT_NE(second, first);
    EXPECT_EQ(VLM::NotifiyHandlerFactory::retiredCount(), retiredBefore + 1);
    first->notifiyAll("still alive"); // a retired transport stays usable
    EXPECT_EQ(heard, std::vector<std::string>{"l:still alive"});
}

} // namespace
