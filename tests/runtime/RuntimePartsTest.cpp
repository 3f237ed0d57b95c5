// The runtime's parts on their own: the dialog manager over resources of a test's own, and
// the document hub with a recorder for responders, no plug-in loaded.
#include "host/base/PluginCalls.h"
#include "host/dialogs/DialogManager.h"
#include "host/dialogs/DialogPresenter.h"
#include "host/dialogs/DialogResources.h"
#include "host/document/IdmlDocument.h"
#include "host/loop/IdleTasks.h"
#include "host/loop/MainLoop.h"
#include "host/loop/SdEventLoop.h"
#include "host/runtime/DocumentHub.h"
#include "host/runtime/Presenter.h"
#include "host/session/GalleySession.h"
#include "sdk/HostIdentifiers.h"
#include "sdk/ISignalMgr.h"
#include "tests/support/ListedFaces.h"

#include <gtest/gtest.h>

#include <chrono>

namespace {

using namespace std::chrono_literals;

struct Recorder : Galley::Presenter {
    std::vector<std::string> lines;
    void dialogOpened(Galley::Dialog&) override { lines.push_back("opened"); }
    void dialogClosed(Galley::Dialog&) override { lines.push_back("closed"); }
    int16 alert(IAlertPresenter::Kind, const std::string&, const std::string[3],
                int16 answer) override {
        return answer;
    }
    void status(const std::string& line) override { lines.push_back(line); }
    void documentChanged(Galley::IdmlDocument& document) override {
        lines.push_back("shown " + document.GetName().GetUTF8String());
    }
};

// The test plug-in's dialog description, with the SDK's plain controller and observer.
struct OneDialog : Galley::DialogResources {
    static std::unique_ptr<IPMUnknown> controller(IPMUnknown* dialog) {
        return std::make_unique<CDialogController>(dialog);
    }
    static std::unique_ptr<IPMUnknown> observer(IPMUnknown* dialog) {
        return std::make_unique<CDialogObserver>(dialog);
    }
    DialogEntry dialogEntry(const RsrcSpec& spec) const override {
        if (spec.rsrcID != 1)
            throw std::runtime_error("no dialog " + std::to_string(spec.rsrcID));
        return {"test", TEST_DIALOG_DESCRIPTION, &controller, &observer};
    }
    std::string widgetResourceFile(const RsrcSpec&) const override {
        throw std::runtime_error("no widget resources");
    }
    void makeAddIns(WidgetID, IPMUnknown*, const AddInSink&) override {}
    IPMUnknown* dialogAddIn(RsrcID, PMIID) const override { return nullptr; }
    std::string displayText(const PMString& text) const override { return text.GetUTF8String(); }
};

class RuntimeParts : public ::testing::Test {
protected:
    Galley::SdEventLoop events;
    Galley::MainLoop loop{events};
    Recorder presenter;
    Galley::PluginCalls calls{[this](const std::string& line) { presenter.status(line); }};
    Galley::IdleTasks idleTasks{
        events, [](const std::string&, const std::function<void()>& call) { call(); }};
    VLMTest::ListedFaces faces;
    Galley::GalleySession session{faces};
};

RsrcSpec dialogSpec(RsrcID id) {
    return RsrcSpec(PMLocaleId{}, 0, kViewRsrcType, id);
}

// A wait past the deadline cancels the dialog in front; a dialog nobody describes is refused
// with the reason, and so is any once the manager has closed them all.
TEST_F(RuntimeParts, DialogManagerWaitsWithinItsDeadlineAndRefusesWhatItCannotMake) {
    OneDialog resources;
    Galley::DialogManager dialogs(loop, idleTasks, calls, resources, presenter,
                                  std::chrono::steady_clock::now() + 50ms);
    EXPECT_EQ(dialogs.CreateNewDialog(dialogSpec(2), IDialog::kMovableModal), nullptr);
    EXPECT_EQ(presenter.lines, std::vector<std::string>{"no dialog 2"});

    IDialog* dialog = dialogs.CreateNewDialog(dialogSpec(1), IDialog::kMovableModal);
    ASSERT_NE(dialog, nullptr);
    dialog->Open();
    EXPECT_EQ(dialogs.frontDialog(), dialog);
    dialog->WaitForDialog(false);
    EXPECT_TRUE(dialogs.timedOut());
    EXPECT_EQ(dialogs.frontDialog(), nullptr);
    EXPECT_EQ(presenter.lines, (std::vector<std::string>{"no dialog 2", "opened", "closed"}));
    dialogs.closeAll();
    EXPECT_EQ(dialogs.CreateNewDialog(dialogSpec(1), IDialog::kMovableModal), nullptr);
}

// The hub shows a document before it signals the responders; one that cannot be read leaves
// the open document as it was.
TEST_F(RuntimeParts, DocumentHubShowsThenSignalsAndKeepsTheDocumentWhenAnOpenFails) {
    std::vector<std::pair<ServiceID, std::string>> signals;
    Galley::DocumentHub hub(
        events, loop, session, presenter, calls,
        [&](ServiceID service, ISignalMgr& signal) {
            IDocument* document = signal.GetDocumentSignalData()->GetDocument();
            signals.emplace_back(service, document->GetName().GetUTF8String());
            presenter.lines.push_back("signalled");
        },
        Galley::FolderWatching::off);
    Galley::IdmlDocument& document = hub.open(SAMPLE_DOCUMENT);
    EXPECT_EQ(hub.GetFrontDocument(), &document);
    EXPECT_EQ(signals, (std::vector<std::pair<ServiceID, std::string>>{
                           {kAfterOpenDocSignalResponderService, "brochure.idml"}}));
    EXPECT_EQ(presenter.lines, (std::vector<std::string>{"shown brochure.idml", "signalled"}));
    EXPECT_THROW(hub.open("/nonexistent/other.idml"), std::exception);
    EXPECT_EQ(hub.front(), &document);
}

} // namespace
