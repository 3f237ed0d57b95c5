#include "FakeHost.h"

#include "document/DocumentServiceProvider.h"
#include "document/FontChangeObserver.h"
#include "document/IDFontSuite.h"
#include "document/RefreshIdleTask.h"
#include "document/VellumineActionComponent.h"
#include "link/NotifiyHandlerFactory.h"
#include "link/VLMChangeNotifier.h"
#include "resources/VellumineIDs.h"
#include "sdk/HostIdentifiers.h"
#include "sdk/ISignalMgr.h"
#include "sdk/TickCount.h"
#include "tests/support/FakePlatform.h"
#include "tests/support/FontManagerStandIn.h"

#include <gtest/gtest.h>

namespace DocumentTest {

using VLM::IDFontSuite;
using FontVector = IDFontSuite::FontVector;

using Holding = VLMTest::FontManagerStandIn::Holding;

class DocumentServices : public ::testing::Test {
public:
    void SetUp() override {
        suite = IDFontSuite::getFontSuite(true);
        VLM::NotifiyHandlerFactory::getNotifyHandler(true);
        platform.runningApplications.add("VLMQ", "org.vellumine.Vellumine", 42);
        platform.appEvents.setResponder([this](const Platform::AppEvent& event) { return vellumine.answer(event.text); });
        document.addFamily(1234, "Minion", {{"Bold", "Minion-Bold", IPMFont::kOpenTypeCFF},
                                            {"Regular", "Minion-Regular", IPMFont::kType1}});
        document.addFamily(7, "Nameless", {{"", "", IPMFont::kTrueType}});
        document.addFamily(8, "Times", {{"Roman", "Times Roman", IPMFont::kTrueType}});
        session.observer = &observer;
        session.observerIID = IID_IFONTCHANGEOBSERVER;
    }

    bool sent(const std::string& command) const { return vellumine.received(command); }

    struct Signal : ISignalMgr, IDocumentSignalData {
        ServiceID service;
        IDocument* document;
        ServiceID GetServiceID() const override { return service; }
        IDocumentSignalData* GetDocumentSignalData() const override { return const_cast<Signal*>(this); }
        IDocument* GetDocument() const override { return document; }
    };
    void respond(ServiceID service = kAfterOpenDocSignalResponderService) {
        Signal signal;
        signal.service = service;
        signal.document = &document;
        VLM::DocumentResponder().Respond(&signal);
    }
    bool transportStarted() const { return platform.appEvents.hasHandler("VLM4", "****"); }

    VLMTest::FakePlatform platform;
    FakeSession session;
    FakeDocument document;
    VLM::FontChangeObserver observer;
    IDFontSuite* suite = nullptr;
    VLMTest::FontManagerStandIn vellumine;
    std::map<std::string, Holding>& holdings = vellumine.holdings;
    std::vector<std::string>& requests = vellumine.requests;
    std::string& protocol = vellumine.protocol;
    std::string& replyOverride = vellumine.fontReplyOverride;
    bool& showWindow = vellumine.showWindow;
};

TEST_F(DocumentServices, TheSuiteIsOneInstanceUntilRecreated) {
    EXPECT_EQ(IDFontSuite::getFontSuite(false), suite);
    suite->documentFonts.push_back(new VLMFontInfo());
    suite->currentDocument = &document;
    IDFontSuite* fresh = IDFontSuite::getFontSuite(true);
    EXPECT_TRUE(fresh->documentFonts.empty());
    EXPECT_EQ(fresh->currentDocument, nullptr);
}

TEST_F(DocumentServices, ScanListsMissingFontsFirstWithTheirNamesTypesAndSyncIDs) {
    document.missing = {{1234, "Bold"}, {7, ""}};
    document.used = {{1234, "Regular"}, {8, "Roman"}};
    const FontVector fonts = suite->ScanDocument(&document);
    EXPECT_EQ(document.updates, 1);
    struct Row {
        std::string syncID, ps, style, family, host;
        int type;
        bool used;
    };
    const std::vector<Row> expected = {
        {"1234-Bold", "Minion-Bold", "Bold", "Minion", "Minion (host)", 2, false},
        {"7-", "Nameless", "Regular", "Nameless", "Nameless (host)", 4, false}, // no PostScript name
        {"1234-Regular", "Minion-Regular", "Regular", "Minion", "Minion (host)", 0, true},
        {"8-Roman", "Times", "Roman", "Times", "Times (host)", 4, true}, // a blank: no PostScript name
    };
    ASSERT_EQ(fonts.size(), expected.size());
    for (std::size_t i = 0; i < fonts.size(); ++i) {
        const auto& f = *fonts[i];
        EXPECT_EQ(f.font.syncID, expected[i].syncID);
        EXPECT_EQ(f.font.psName, expected[i].ps) << f.font.syncID;
        EXPECT_EQ(f.font.styleName, expected[i].style) << f.font.syncID;
        EXPECT_EQ(f.font.familyName, expected[i].family);
        EXPECT_EQ(f.hostFontName, expected[i].host);
        EXPECT_EQ(f.font.type, expected[i].type) << f.font.syncID;
        EXPECT_EQ(f.stateFlag4, expected[i].used);
        EXPECT_EQ(f.stateFlag3, expected[i].used);
    }
    EXPECT_TRUE(suite->ScanDocument(nullptr).empty());
}

TEST_F(DocumentServices, HostFontTypesMapToProtocolTypes) {
    // host type -> {plain, OpenType flavour}
    const std::map<int, std::pair<int, int>> table = {
        {-1, {4, 4}}, {0, {0, 2}}, {1, {1, 3}}, {2, {4, 4}}, {5, {4, 4}},
        {6, {2, 2}},  {7, {4, 4}}, {8, {3, 3}}, {9, {4, 4}},
    };
    for (const auto& [host, types] : table) {
        for (bool flavour : {false, true}) {
            Tamrik::SmartPointer<VLMFontInfo> font(new VLMFontInfo());
            font->font.psName = "Font-Bold";
            suite->applyFontType(font, static_cast<IPMFont::FontType>(host), flavour);
            EXPECT_EQ(font->font.type, flavour ? types.second : types.first) << host;
        }
    }
}

TEST_F(DocumentServices, CountsAndMissingFontsFollowStrictTypeMatching) {
    auto make = [](bool used, bool typeActive, bool hasTypeMatching) {
        Tamrik::SmartPointer<VLMFontInfo> font(new VLMFontInfo());
        font->stateFlag4 = used;
        font->font.isTypeMatchingActive = typeActive;
        font->hasTypeMatching = hasTypeMatching;
        font->selectedContainerID = "5";
        return font;
    };
    const FontVector fonts = {make(false, false, true), make(true, false, false), make(true, true, true)};
    EXPECT_EQ(suite->getNumMissingFonts(fonts, false), 1);
    EXPECT_EQ(suite->getNumMissingFonts(fonts, true), 2);
    EXPECT_EQ(suite->getNumFontsNotInstalled(fonts), 1);
    const FontVector missing = suite->getMissingFonts(fonts, false);
    ASSERT_EQ(missing.size(), 1u);
    EXPECT_EQ(missing[0].get(), fonts[0].get());
    for (const auto& font : fonts)
        EXPECT_EQ(font->selectedContainerID, "-1") << "every record is reset, missing or not";
    EXPECT_EQ(suite->getNumMissingFonts({}, true), 0);
}

TEST_F(DocumentServices, ChecksAlertOnAMissingFontManagerAndStopQuietlyOnAnOldProtocol) {
    EXPECT_EQ(suite->basicVlmChecks(), 0);
    protocol = "1.5";
    EXPECT_EQ(suite->basicVlmChecks(), -1);
    EXPECT_TRUE(session.alertTexts.empty());

    VLMTest::FakePlatform absent; // nothing runs, no launcher is installed
    absent.appEvents.setResponder([this](const Platform::AppEvent& event) { return vellumine.answer(event.text); });
    EXPECT_NE(suite->basicVlmChecks(), 0);
    EXPECT_EQ(session.alertTexts, std::vector<std::string>{kVellumineNotFoundKey});
    // The four requests still go out after the failed check.
    const FontVector none;
    FontVector fonts;
    suite->syncFontsWithVlm(fonts);
    suite->activateFonts(none);
    suite->showInfo(none);
    suite->buyFonts(none);
    for (const char* command : {"fontRequest", "activationRequest", "showRequest", "buyRequest"})
        EXPECT_TRUE(sent(command)) << command;
}

TEST_F(DocumentServices, RespondActsOnlyOnTheAfterOpenSignal) {
    document.missing = {{1234, "Bold"}};
    respond(kBeforeCloseDocSignalResponderService);
    respond(15873);
    EXPECT_EQ(document.updates, 0);
    EXPECT_TRUE(requests.empty());

    VLM::DocumentServiceProvider provider;
    PMString name;
    provider.GetName(&name);
    EXPECT_EQ(name.GetUTF8String(), "DocWatch Responder Service");
    K2Vector<ServiceID> ids;
    provider.GetServiceIDs(ids);
    EXPECT_EQ(ids, (K2Vector<ServiceID>{3598, 15873, 90882, 3597}));
    EXPECT_EQ(provider.GetServiceID(), 3598u);
}

TEST_F(DocumentServices, RespondChoosesTheDialogFromTheFontManagersAnswer) {
    struct Case {
        std::string name;
        bool showWindow;
        Holding held;
        bool known; // the font manager holds the font at all
        RsrcID dialog; // 0: none
        std::vector<std::string> calls;
    };
    const std::vector<Case> cases = {
        {"supplied without a choice", false, {1, false, {"11"}}, true, 302,
         {"closes by itself", "open", "wait with idle tasks"}},
        {"a choice to make", true, {2, false, {"11", "12"}}, true, 250, {"needs the user", "open", "wait"}},
        {"not in the library", false, {}, false, 250, {"needs the user", "open", "wait"}},
    };
    for (const auto& c : cases) {
        SetUp();
        session.dialogs.made.clear();
        document.missing = {{1234, "Bold"}};
        holdings.clear();
        if (c.known)
            holdings["1234-Bold"] = c.held;
        showWindow = c.showWindow;
        bool handledDuringWait = false;
        session.dialogs.duringWait = [&](FakeDialogs::Made&) {
            handledDuringWait = suite->currentDocument == &document && suite->documentFonts.size() == 1 &&
                                observer.IsEnabled() && transportStarted();
        };
        respond();
        ASSERT_EQ(session.dialogs.made.size(), 1u) << c.name;
        EXPECT_EQ(session.dialogs.made[0]->resource, c.dialog) << c.name;
        EXPECT_EQ(session.dialogs.made[0]->calls, c.calls) << c.name;
        EXPECT_TRUE(handledDuringWait) << c.name;
        EXPECT_EQ(suite->currentDocument, nullptr) << c.name;
        EXPECT_TRUE(suite->documentFonts.empty()) << c.name;
        EXPECT_FALSE(session.fonts.subject.IsAttached(&observer, IID_IFONTMGR)) << c.name;
        EXPECT_FALSE(observer.IsEnabled()) << c.name;
        EXPECT_FALSE(transportStarted()) << c.name;
        observer.SetEnabled(true);
    }
}

TEST_F(DocumentServices, RespondEndsEarlyWithTheRightAlertAndLeavesTheObserverAttached) {
    struct Case {
        std::string name;
        std::function<void(DocumentServices&)> arrange;
        std::vector<std::string> alerts;
        bool leftAttached;
    };
    const std::vector<Case> cases = {
        {"nothing missing", [](DocumentServices&) {}, {}, false},
        {"converted", [](DocumentServices& t) { t.document.converted = true; }, {kVellumineConvertedDocTextKey}, true},
        {"old protocol", [](DocumentServices& t) { t.protocol = "1.5"; }, {}, true},
        {"unreadable reply", [](DocumentServices& t) { t.replyOverride = "<cmd>fontReply</cmd>\n<protocolVersion>2.0</protocolVersion>\n"
                                                                        "<font><type>bogus</type></font>\n</cmd>\n"; },
         {"could not parse <font><type>bogus</type>..."}, true},
        {"no dialog manager", [](DocumentServices& t) { t.session.withDialogs = false; }, {}, true},
    };
    for (const auto& c : cases) {
        SetUp();
        session.alertTexts.clear();
        session.dialogs.made.clear();
        session.withDialogs = true;
        session.fonts.subject.attached.clear();
        document.converted = false;
        protocol = "2.0";
        replyOverride.clear();
        document.missing.clear();
        if (c.name != "nothing missing")
            document.missing = {{1234, "Bold"}};
        c.arrange(*this);
        respond();
        EXPECT_TRUE(session.dialogs.made.empty()) << c.name;
        ASSERT_EQ(session.alertTexts.size(), c.alerts.size()) << c.name;
        for (std::size_t i = 0; i < c.alerts.size(); ++i)
            EXPECT_NE(session.alertTexts[i].find(c.alerts[i]), std::string::npos) << c.name << ": " << session.alertTexts[i];
        EXPECT_EQ(session.fonts.subject.IsAttached(&observer, IID_IFONTMGR), c.leftAttached) << c.name;
        EXPECT_EQ(transportStarted(), c.leftAttached) << c.name;
        VLM::NotifiyHandlerFactory::getNotifyHandler(false)->end();
    }
    EXPECT_FALSE(sent("fontRequest") && document.converted) << "a converted document's fonts are never sent";
}

struct Heard : VLM::IVLMChangeNotifier {
    std::vector<std::string> texts;
    void OnVLMNotify(const std::string& text) override { texts.push_back(text); }
};

TEST_F(DocumentServices, FontChangeKeepsEarlierRecordsWithFreshFlagsAndTellsTheListeners) {
    document.missing = {{1234, "Bold"}};
    document.used = {{1234, "Regular"}};
    holdings["1234-Bold"] = {};
    suite->currentDocument = &document;
    suite->documentFonts = suite->ScanDocument(&document);
    Tamrik::SmartPointer<VLMFontInfo> duplicate(new VLMFontInfo(*suite->documentFonts[0]));
    suite->documentFonts.push_back(duplicate);
    const VLMFontInfo* bold = suite->documentFonts[0].get();
    suite->documentFonts[0]->selectedContainerID = "11"; // the user chose a container
    Heard heard;
    VLM::NotifiyHandlerFactory::getNotifyHandler(false)->registerNotifer(&heard);

    observer.Update(kFontSystemChangedMessage + 1, nullptr, IID_IFONTMGR, nullptr);
    EXPECT_TRUE(heard.texts.empty());

    // The bold face arrived; an italic face appears in the document.
    document.addFamily(1234, "Minion", {{"Bold", "Minion-Bold"}, {"Regular", "Minion-Regular"}, {"Italic", "Minion-Italic"}});
    document.missing = {};
    document.used = {{1234, "Bold"}, {1234, "Italic"}};
    observer.Update(kFontSystemChangedMessage, nullptr, IID_IFONTMGR, nullptr);
    ASSERT_EQ(suite->documentFonts.size(), 2u);
    EXPECT_EQ(suite->documentFonts[0].get(), bold) << "the first earlier record of a syncID lives on";
    EXPECT_EQ(suite->documentFonts[0]->selectedContainerID, "11");
    EXPECT_TRUE(suite->documentFonts[0]->stateFlag4);
    EXPECT_TRUE(suite->documentFonts[0]->hasTypeMatching) << "the font manager's fresh answer";
    EXPECT_EQ(suite->documentFonts[1]->font.syncID, "1234-Italic");
    EXPECT_EQ(heard.texts, std::vector<std::string>{"<cmd cmd=\"fontChanged\"/>"});

    suite->currentDocument = nullptr;
    observer.Update(kFontSystemChangedMessage, nullptr, IID_IFONTMGR, nullptr);
    EXPECT_EQ(heard.texts.size(), 1u);
    VLM::NotifiyHandlerFactory::getNotifyHandler(false)->unregisterNotifer(&heard);
}

TEST_F(DocumentServices, MenuActionsShowAboutOrOpenTheFontsDialogWithoutWaiting) {
    VLM::VellumineActionComponent actions;
    actions.DoAction(nullptr, 0x11f301, {}, nullptr);
    EXPECT_TRUE(session.alertTexts.empty());
    EXPECT_TRUE(session.dialogs.made.empty());
    actions.DoAction(nullptr, kVellumineAboutActionID, {}, nullptr);
    EXPECT_EQ(session.alertTexts, std::vector<std::string>{kVellumineAboutBoxStringKey});
    actions.DoAction(nullptr, kVellumineDialogActionID, {}, nullptr);
    ASSERT_EQ(session.dialogs.made.size(), 1u);
    EXPECT_EQ(session.dialogs.made[0]->resource, kVellumineDialogRsrcID);
    EXPECT_EQ(session.dialogs.made[0]->calls, std::vector<std::string>{"open"});
}

uint32 scriptedTicks = 0;

TEST_F(DocumentServices, FontSystemRefreshStopsAtAChangeOrAfterTwoHundredTicks) {
    SetTickSource([] { return scriptedTicks += 1; });
    session.fonts.counts = {10, 11};
    VLM::RefreshIdleTask task;
    EXPECT_EQ(task.RunTask(0, nullptr), 5000u);
    EXPECT_STREQ(task.TaskName(), "WaitingCloseThread");
    EXPECT_EQ(session.fonts.updates, 1) << "the count changed at once";
    EXPECT_EQ(session.fonts.refreshed, 1);

    session.fonts.counts = {10};
    session.fonts.updates = 0;
    EXPECT_EQ(task.RunTask(0, nullptr), 5000u);
    EXPECT_EQ(session.fonts.updates, 200) << "one tick passes per pass here";
    SetTickSource(nullptr);
}

} // namespace DocumentTest
