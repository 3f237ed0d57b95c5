#pragma once

#include "sdk/HostTypes.h"
#include "sdk/IObserver.h"
#include "sdk/IPMUnknown.h"
#include "sdk/ResourceName.h"

class IActiveContext;
class IControlView;
class IIntData;
class IPanelControlData;
class IStringData;

class IDialogController;

// A dialog made from a plug-in's description, with the controller and observer the
// plug-in registered for it.
class IDialog : public IPMUnknown, public IAddInHolder {
public:
    enum DialogType { kModeless = 0, kMovableModal = 1 };

    // Shows the dialog: the controller initialises its fields, then the observer attaches.
    virtual void Open(IDialog* parent = nullptr) = 0;
    // Hides the dialog: the observer detaches; a wait for it returns. Closing a closed
    // dialog does nothing. The dialog stays readable until control is back in the event
    // loop at the level that created it.
    virtual void Close(int32 reason = 0) = 0;
    virtual bool IsOpen() const = 0;

    // Runs the host's event loop until the dialog is closed (in batch mode also until the
    // batch's time-out, which then cancels it). With `allowIdleTasks` false, idle tasks wait
    // until the dialog has closed; bus events, timers and the font-folder watch go on.
    virtual void WaitForDialog(bool allowIdleTasks) = 0;

    // True: the dialog ends by itself (its logic closes it, as a progress dialog does), so
    // an unattended run waits for it. False: it needs the user's decision, and an
    // unattended run that has nothing left to do cancels it.
    virtual void SetClosesByItself(bool byItself) = 0;

    virtual IPanelControlData* GetDialogPanel() = 0;
    virtual IDialogController* GetController() = 0;
    virtual IObserver* GetObserver() = 0;
    // Presses the button the description marks as default (OK unless stated otherwise).
    virtual void PressDefaultButton() = 0;

    // The dialog's result slots (IID_ISTRINGDATA, IID_IINTDATA).
    virtual IStringData* GetStringData() = 0;
    virtual IIntData* GetIntData() = 0;
};

// Creates dialogs and knows the one in front.
class IDialogMgr {
public:
    virtual ~IDialogMgr() = default;
    // Null when the resource is unknown or its description cannot be read (the host has
    // reported why).
    virtual IDialog* CreateNewDialog(const RsrcSpec& spec, IDialog::DialogType mode) = 0;
    // The open dialog opened last; null when none is open.
    virtual IDialog* GetFrontDialog() const = 0;
};

class IDocument;

// The running application.
class IApplication {
public:
    virtual ~IApplication() = default;
    virtual IDialogMgr* GetDialogMgr() = 0;
};

// The layout side of the user interface: which document is in front.
class ILayoutUIUtils {
public:
    virtual ~ILayoutUIUtils() = default;
    virtual IDocument* GetFrontDocument() const = 0;
};

// A dialog's controller: fills its fields when it opens and acts on its widgets.
class IDialogController : public IPMUnknown {
public:
    virtual void InitializeDialogFields(IActiveContext* context) = 0;
    // kDefaultWidgetId when the fields are valid, else the widget at fault.
    virtual WidgetID ValidateDialogFields(IActiveContext* context) = 0;
    virtual void ApplyDialogFields(IActiveContext* context, const WidgetID& widget) = 0;
};

class CDialogController : public IDialogController {
public:
    explicit CDialogController(IPMUnknown* dialog) : dialog_(dynamic_cast<IDialog*>(dialog)) {}
    void InitializeDialogFields(IActiveContext*) override {}
    WidgetID ValidateDialogFields(IActiveContext*) override { return kDefaultWidgetId; }
    void ApplyDialogFields(IActiveContext*, const WidgetID&) override {}
    IDialog* GetDialog() const { return dialog_; }
    IPanelControlData* GetPanel() const;

private:
    IDialog* dialog_;
};

// A dialog's observer: watches its widgets while the dialog is shown.
class CDialogObserver : public CObserver {
public:
    explicit CDialogObserver(IPMUnknown* dialog, PMIID iid = 0)
        : CObserver(dialog, iid), dialog_(dynamic_cast<IDialog*>(dialog)) {}
    void Update(ClassID, ISubject*, PMIID, void*) override {}
    // Asks the dialog to close.
    virtual void CloseDialog(int16 reason = 0);
    virtual void FireOffEndDialogCmd(int16) {}

    IDialog* GetDialog() const { return dialog_; }
    IPanelControlData* GetPanel() const;
    IDialogController* GetController() const;
    // Attaches to / detaches from the subject of the panel's widget `id` for `protocol`.
    void AttachToWidget(WidgetID id, PMIID protocol);
    void DetachFromWidget(WidgetID id, PMIID protocol);

private:
    IDialog* dialog_;
};

// The observer base of dialogs that close themselves, so that they close once.
class IClosingDialogObserver : public CDialogObserver {
public:
    using CDialogObserver::CDialogObserver;
    bool IsClosed() const { return closed; }

protected:
    bool closed = false;
};
