#include "LoopScenarios.h"

#include "host/plugins/PluginLoader.h"
#include "platform/Platform.h"
#include "sdk/IIdleTask.h"
#include "sdk/ISubject.h"
#include "sdk/TickCount.h"
#include "tests/support/FakeClock.h"

#include <chrono>

namespace RuntimeTest {

using namespace std::chrono_literals;

TEST(PluginLoading, RefusesEachBrokenPluginOnceAndNamesWhy) {
    struct Case {
        std::string path;
        std::string reason;
    };
    const std::string dir = TEST_PLUGIN_VARIANTS;
    const std::vector<Case> cases = {
        {"/nonexistent/libnothing.so", "cannot open shared object file"},
        {dir + "/plugin-v1/libgalley-test-plugin-v1.so", "exports no SDK version"},
        {dir + "/plugin-v2/libgalley-test-plugin-v2.so",
         "built for SDK version " + std::to_string(kGalleySDKVersion + 1) +
             ", this Galley has version " + std::to_string(kGalleySDKVersion)},
        {dir + "/plugin-v3/libgalley-test-plugin-v3.so", "its entry point failed"},
        {dir + "/plugin-v4/libgalley-test-plugin-v4.so", "idle task 0x7E5703 is registered twice"},
    };
    for (const auto& c : cases) {
        std::vector<std::string> reports;
        Galley::PluginCalls calls([&](const std::string& message) { reports.push_back(message); });
        auto plugin = Galley::PluginLoader(calls).load(c.path);
        EXPECT_EQ(plugin->state, Galley::LoadedPlugin::State::failed) << c.path;
        ASSERT_FALSE(reports.empty()) << c.path;
        EXPECT_NE(reports.back().find("plug-in " + c.path + " was not loaded: "), std::string::npos)
            << reports.back();
        EXPECT_NE(reports.back().find(c.reason), std::string::npos) << reports.back();
        // The thrown entry point is reported as the failure it is, then the refusal: no more.
        EXPECT_LE(reports.size(), 2u) << c.path;
    }
}

TEST(PluginLoading, SearchPathSkipsALibraryAlreadyLoadedUnderTheSameName) {
    std::vector<std::string> reports;
    Galley::PluginCalls calls([&](const std::string& message) { reports.push_back(message); });
    auto plugins = Galley::PluginLoader(calls).loadAll({TEST_PLUGIN_DIR, TEST_PLUGIN});
    ASSERT_EQ(plugins.size(), 1u);
    EXPECT_EQ(plugins[0]->state, Galley::LoadedPlugin::State::registered);
    EXPECT_EQ(plugins[0]->registrations.name, "test");
    EXPECT_TRUE(reports.empty());
}

class Runtime : public RuntimeFixture {};

TEST_F(Runtime, PluginSeesTheHostsOneSessionClockAndTicks) {
    VLMTest::FakeClock clock;
    Platform::Services services = Platform::services();
    services.clock = &clock;
    Platform::install(services);
    SetTickSource([] { return 4242u; });
    runtime->documents().open(SAMPLE_DOCUMENT);
    SetTickSource(nullptr);
    EXPECT_EQ(probe->sessionSeen, &session);
    EXPECT_EQ(probe->ticksSeen, 4242u);
    EXPECT_EQ(probe->clockSeen, &clock);
    Platform::install(Platform::Services{});
}

TEST_F(Runtime, DocumentSignalsReachTheRespondersThatAskedForThem) {
    Galley::IdmlDocument& document = runtime->documents().open(SAMPLE_DOCUMENT);
    // The after-open signal comes once the document is fully built: its stories are there.
    ASSERT_EQ(probe->events.size(), 1u);
    EXPECT_EQ(probe->events[0],
              "respond 3598 stories=" + std::to_string(document.GetTextModelCount()));
    EXPECT_GT(document.GetTextModelCount(), 0);
    runtime->documents().sendSignal(kBeforeCloseDocSignalResponderService, &document);
    runtime->documents().sendSignal(kAfterNewDocSignalResponderService, &document);
    EXPECT_EQ(probe->events.size(), 2u);
    EXPECT_TRUE(saw("respond 3597 stories=" + std::to_string(document.GetTextModelCount())));
}

TEST_F(Runtime, AnExceptionOutOfThePluginIsReportedAndTheHostRunsOn) {
    probe->throwInResponder = true;
    runtime->documents().open(SAMPLE_DOCUMENT);
    EXPECT_EQ(runtime->pluginFailures(), 1);
    EXPECT_TRUE(presenter.has("failed in its responder to signal 3598: the responder gave up"));
    probe->throwInResponder = false;
    EXPECT_TRUE(runtime->invokeAction("probe"));
    EXPECT_TRUE(saw("action " + std::to_string(kTestActionProbe) + " with document"));
}

TEST_F(Runtime, MenuActionsAreFoundByNameOrIDWithTheirTitles) {
    const auto menu = runtime->plugins().menu();
    ASSERT_EQ(menu.size(), 2u);
    EXPECT_EQ(menu[0].title, "Probe");
    EXPECT_TRUE(runtime->invokeAction("0x7E5701"));
    EXPECT_TRUE(runtime->invokeAction(std::to_string(kTestActionProbe)));
    EXPECT_FALSE(runtime->invokeAction("nothing"));
    EXPECT_EQ(std::count(probe->events.begin(), probe->events.end(),
                         "action " + std::to_string(kTestActionProbe)),
              2);
}

TEST_F(Runtime, DisabledObserverHearsNothingUntilEnabledAgain) {
    IObserver* observer = session.QueryObserver(kTestSessionObserverIID);
    ASSERT_NE(observer, nullptr);
    observer->AutoAttach();
    ISubject* fonts = session.GetFontMgr()->GetSubject();
    const std::string heard = "font change 16074 on 15873";
    observer->SetEnabled(false);
    fonts->Change(kFontSystemChangedMessage, IID_IFONTMGR);
    EXPECT_FALSE(saw(heard));
    observer->SetEnabled(true);
    fonts->Change(kFontSystemChangedMessage, IID_IFONTMGR);
    EXPECT_TRUE(saw(heard));
    observer->AutoDetach();
}

TEST_F(Runtime, PressedButtonsReachTheObserverAndOKClosesTheDialog) {
    Galley::Dialog* dialog = openTestDialog();
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(presenter.lines.back(), "opened 0x7e5700kTitleKey");
    auto* probeButton = dialog->root().findByName("probeButton");
    ASSERT_TRUE(dialog->pressButton(*probeButton));
    EXPECT_TRUE(saw("apply " + std::to_string(kTestButtonWidget)));
    probeButton->Disable();
    EXPECT_FALSE(dialog->pressButton(*probeButton));
    dialog->PressDefaultButton();
    EXPECT_TRUE(saw("apply 1538"));
    EXPECT_FALSE(dialog->IsOpen());
    EXPECT_EQ(probe->events.back(), "detach");
}

INSTANTIATE_TYPED_TEST_SUITE_P(SdEvent, LoopScenarios, ::testing::Types<Galley::SdEventLoop>);

} // namespace RuntimeTest
