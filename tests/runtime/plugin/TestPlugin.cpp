// A small plug-in that exercises Galley's side of the boundary: a responder, an idle task,
// a session observer, an action component, a dialog with its controller and observer, and
// an app-event handler that closes the dialog in front. Built in variants that the loader
// must refuse (TEST_PLUGIN_VARIANT).
#include "TestPlugin.h"

#include "platform/Platform.h"
#include "sdk/CAlert.h"
#include "sdk/CServiceProvider.h"
#include "sdk/HostIdentifiers.h"
#include "sdk/IActionComponent.h"
#include "sdk/IControlView.h"
#include "sdk/IDialog.h"
#include "sdk/IDocument.h"
#include "sdk/IFontMgr.h"
#include "sdk/IIdleTask.h"
#include "sdk/ISession.h"
#include "sdk/ISignalMgr.h"
#include "sdk/IStoryList.h"
#include "sdk/ISubject.h"
#include "sdk/PluginRegistry.h"
#include "sdk/TickCount.h"

#include <stdexcept>

#ifndef TEST_PLUGIN_VARIANT
#define TEST_PLUGIN_VARIANT 0
#endif

namespace {

TestPluginProbe probe;

void record(const std::string& event) {
    probe.events.push_back(event);
}

IDialog* frontDialog() {
    IApplication* application = gSession ? gSession->QueryApplication() : nullptr;
    IDialogMgr* dialogs = application ? application->GetDialogMgr() : nullptr;
    return dialogs ? dialogs->GetFrontDialog() : nullptr;
}

class Provider : public CServiceProvider {
public:
    void GetName(PMString* name) override { name->SetCString("Test Responder Service"); }
    ServiceID GetServiceID() override { return kAfterOpenDocSignalResponderService; }
    bool HasMultipleIDs() const override { return true; }
    void GetServiceIDs(K2Vector<ServiceID>& ids) override {
        ids.push_back(kAfterOpenDocSignalResponderService);
        ids.push_back(kBeforeCloseDocSignalResponderService);
    }
};

class Responder : public CResponder {
public:
    void Respond(ISignalMgr* signal) override {
        if (probe.throwInResponder)
            throw std::runtime_error("the responder gave up");
        IDocumentSignalData* data = signal->GetDocumentSignalData();
        IDocument* document = data ? data->GetDocument() : nullptr;
        const int stories = document && document->GetStoryList() ? document->GetStoryList()->GetTextModelCount() : -1;
        record("respond " + std::to_string(signal->GetServiceID()) + " stories=" + std::to_string(stories));
        probe.sessionSeen = gSession;
        probe.ticksSeen = TickCount();
        probe.clockSeen = Platform::services().clock;
    }
};

class Task;
Task* theTask = nullptr;

class Task : public CIdleTask {
public:
    Task() { theTask = this; }
    ~Task() override { theTask = nullptr; }
    uint32 RunTask(uint32, IdleTimer*) override {
        const int run = probe.idleRuns++;
        record("idle " + std::to_string(run));
        if (run == probe.idleRunsBeforeClosingDialog)
            if (IDialog* dialog = frontDialog())
                dialog->Close();
        if (static_cast<std::size_t>(run) < probe.idleDelays.size())
            return probe.idleDelays[static_cast<std::size_t>(run)];
        return kEndOfTime;
    }
    const char* TaskName() override { return "TestTask"; }
};

class FontObserver : public CObserver {
public:
    FontObserver() : CObserver(nullptr, kTestSessionObserverIID) {}
    void Update(ClassID change, ISubject*, PMIID protocol, void*) override {
        record("font change " + std::to_string(change) + " on " + std::to_string(protocol));
    }
    void AutoAttach() override {
        if (IFontMgr* fonts = gSession ? gSession->GetFontMgr() : nullptr)
            fonts->GetSubject()->AttachObserver(this, IID_IFONTMGR);
    }
    void AutoDetach() override {
        if (IFontMgr* fonts = gSession ? gSession->GetFontMgr() : nullptr)
            fonts->GetSubject()->DetachObserver(this, IID_IFONTMGR);
    }
};

int closeFrontDialog(const Platform::AppEvent& event, std::string& reply, void*) {
    record("app event " + event.eventID);
    if (IDialog* dialog = frontDialog())
        dialog->Close();
    reply = "closed";
    return 0;
}

class Actions : public CActionComponent {
public:
    void DoAction(IActiveContext* context, ActionID action, Point, IPMUnknown*) override {
        record("action " + std::to_string(action) + (context && context->GetContextDocument() ? " with document" : ""));
        if (action == kTestActionProbe && theTask)
            theTask->InstallTask(0);
        if (action != kTestActionModal)
            return;
        if (Platform::AppEvents* events = Platform::services().appEvents)
            events->installHandler("TEST", "CLOS", &closeFrontDialog, nullptr);
        IDialog* dialog = gSession->QueryApplication()->GetDialogMgr()->CreateNewDialog(
            RsrcSpec(MLocaleSetting::GetLocale(), kTestPluginPrefix, kViewRsrcType, kTestDialogRsrc),
            IDialog::kMovableModal);
        if (!dialog)
            return;
        dialog->SetClosesByItself(true);
        dialog->Open();
        dialog->WaitForDialog(true);
        record(std::string("wait returned, ") + (dialog->IsOpen() ? "open" : "closed"));
    }
};

class Controller : public CDialogController {
public:
    using CDialogController::CDialogController;
    void InitializeDialogFields(IActiveContext*) override {
        record("initialise");
        IControlView* bar = GetPanel()->FindWidget(kTestProgressWidget, 9);
        bar->GetProgressBarControlData()->SetRange(0, 4);
        bar->GetProgressBarControlData()->SetValue(1);
    }
    void ApplyDialogFields(IActiveContext*, const WidgetID& widget) override {
        record("apply " + std::to_string(widget));
    }
};

class Observer : public CDialogObserver {
public:
    using CDialogObserver::CDialogObserver;
    void AutoAttach() override {
        record("attach");
        AttachToWidget(kTestButtonWidget, IID_IBOOLEANCONTROLDATA);
        AttachToWidget(kOKButtonWidgetID, IID_IBOOLEANCONTROLDATA);
    }
    void AutoDetach() override {
        record("detach");
        DetachFromWidget(kTestButtonWidget, IID_IBOOLEANCONTROLDATA);
        DetachFromWidget(kOKButtonWidgetID, IID_IBOOLEANCONTROLDATA);
    }
    void Update(ClassID change, ISubject* subject, PMIID, void*) override {
        if (change != kTrueStateMessage)
            return;
        for (WidgetID id : {kTestButtonWidget, kOKButtonWidgetID}) {
            IControlView* button = GetPanel()->FindWidget(id, 9);
            if (button && button->GetSubject() == subject)
                GetController()->ApplyDialogFields(nullptr, id);
        }
    }
};

template <typename T>
std::unique_ptr<IPMUnknown> make(IPMUnknown*) {
    return std::make_unique<T>();
}

template <typename T>
std::unique_ptr<IPMUnknown> makeOn(IPMUnknown* boss) {
    return std::make_unique<T>(boss);
}

} // namespace

extern "C" TestPluginProbe* GalleyTestPluginProbe() {
    return &probe;
}

#if TEST_PLUGIN_VARIANT != 1 // variant 1 has no entry point
extern "C" __attribute__((visibility("default"))) const uint32 GalleyPluginSDKVersion =
#if TEST_PLUGIN_VARIANT == 2
    kGalleySDKVersion + 1;
#else
    kGalleySDKVersion;
#endif

extern "C" __attribute__((visibility("default"))) void GalleyPluginMain(IPluginRegistry* registry) {
#if TEST_PLUGIN_VARIANT == 3
    throw std::runtime_error("the entry point gave up");
#endif
    registry->SetPluginInfo("test", kTestPluginPrefix);
    registry->RegisterResponder(kTestPluginPrefix + 1, &make<Provider>, kTestPluginPrefix + 2, &make<Responder>);
    registry->RegisterIdleTask(kTestPluginPrefix + 3, &make<Task>, 0, 0);
    registry->RegisterSessionObserver(kTestPluginPrefix + 4, kTestSessionObserverIID, &make<FontObserver>);
    registry->RegisterActionComponent(kTestPluginPrefix + 5, &make<Actions>);
    registry->RegisterMenuEntry(kTestActionProbe, "probe", "0x7e5700kProbeKey");
    registry->RegisterMenuEntry(kTestActionModal, "modal", "0x7e5700kModalKey");
    registry->RegisterDialog(kTestDialogRsrc, "dialog.ui", kTestPluginPrefix + 6, &makeOn<Controller>,
                             kTestPluginPrefix + 7, &makeOn<Observer>);
    registry->RegisterWidgetResource(kTestRowRsrc, "row.ui");
    registry->RegisterStringTable("en", "strings.en");
#if TEST_PLUGIN_VARIANT == 4
    registry->RegisterIdleTask(kTestPluginPrefix + 3, &make<Task>, 0, 0);
#endif
}
#endif
