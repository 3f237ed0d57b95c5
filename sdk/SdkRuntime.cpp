// The SDK's non-header code that stands on the host: helpers of the base classes that
// plug-ins derive from, forwarded to the hooks the host installed.
#include "sdk/CAlert.h"
#include "sdk/HostHooks.h"
#include "sdk/HostIdentifiers.h"
#include "sdk/IControlView.h"
#include "sdk/IDialog.h"
#include "sdk/IIdleTask.h"
#include "sdk/IPMStream.h"
#include "sdk/ISubject.h"
#include "sdk/ITreeView.h"

#include <iostream>

namespace {

IHostHooks* hostHooks = nullptr;

// Without a host (a plug-in's unit tests that install nothing): alerts are printed and
// answered with their default button.
class StderrAlerts : public IAlertPresenter {
public:
    int16 present(Kind, const PMString& message, const PMString[3], int16 defaultButton,
                  int16) override {
        std::cerr << "alert: " << message.GetUTF8String() << '\n';
        return defaultButton;
    }
};

IAlertPresenter& alerts() {
    static StderrAlerts fallback;
    return hostHooks ? hostHooks->alerts() : fallback;
}

} // namespace

void SetHostHooks(IHostHooks* hooks) {
    hostHooks = hooks;
}

IHostHooks* GetHostHooks() {
    return hostHooks;
}

PMLocaleId MLocaleSetting::GetLocale() {
    return hostHooks ? hostHooks->locale() : PMLocaleId{};
}

void CAlert::InformationAlert(const PMString& message) {
    const PMString buttons[3] = {PMString("OK"), PMString(), PMString()};
    alerts().present(IAlertPresenter::Kind::information, message, buttons, kOKButton, kCautionIcon);
}

int16 CAlert::ModalAlert(const PMString& message, const PMString& button1, const PMString& button2,
                         const PMString& button3, int16 defaultButton, int16 iconType) {
    const PMString buttons[3] = {button1, button2, button3};
    return alerts().present(IAlertPresenter::Kind::modal, message, buttons, defaultButton,
                            iconType);
}

void CIdleTask::InstallTask(uint32 delayMilliseconds) {
    if (hostHooks)
        hostHooks->installIdleTask(this, delayMilliseconds);
}

void CIdleTask::UninstallTask() {
    if (hostHooks)
        hostHooks->uninstallIdleTask(this);
}

bool CIdleTask::IsInstalled() const {
    return hostHooks && hostHooks->isIdleTaskInstalled(this);
}

IControlView* CTreeViewWidgetMgr::GetTreeWidget() const {
    return dynamic_cast<IControlView*>(treeWidget_);
}

IControlView* CTreeViewWidgetMgr::CreateRowWidget(const RsrcSpec& row) const {
    return hostHooks ? hostHooks->createRowWidget(GetTreeWidget(), row) : nullptr;
}

IPanelControlData* CDialogController::GetPanel() const {
    return dialog_ ? dialog_->GetDialogPanel() : nullptr;
}

IPanelControlData* CDialogObserver::GetPanel() const {
    return dialog_ ? dialog_->GetDialogPanel() : nullptr;
}

IDialogController* CDialogObserver::GetController() const {
    return dialog_ ? dialog_->GetController() : nullptr;
}

void CDialogObserver::CloseDialog(int16 reason) {
    if (dialog_)
        dialog_->Close(reason);
}

void CDialogObserver::AttachToWidget(WidgetID id, PMIID protocol) {
    IPanelControlData* panel = GetPanel();
    IControlView* widget = panel ? panel->FindWidget(id, 9999) : nullptr;
    if (widget && widget->GetSubject())
        widget->GetSubject()->AttachObserver(this, protocol);
}

void CDialogObserver::DetachFromWidget(WidgetID id, PMIID protocol) {
    IPanelControlData* panel = GetPanel();
    IControlView* widget = panel ? panel->FindWidget(id, 9999) : nullptr;
    if (widget && widget->GetSubject())
        widget->GetSubject()->DetachObserver(this, protocol);
}

void MemoryStream::XferString(std::string& text) {
    // Each string is its length in decimal, a colon, then its bytes.
    if (!IsReading()) {
        bytes_ += std::to_string(text.size()) + ':' + text;
        return;
    }
    text.clear();
    const std::size_t colon = bytes_.find(':', next_);
    if (colon == std::string::npos)
        return;
    std::size_t length = 0;
    try {
        length = std::stoul(bytes_.substr(next_, colon - next_));
    } catch (const std::exception&) {
        next_ = bytes_.size();
        return;
    }
    text = bytes_.substr(colon + 1, length);
    next_ = std::min(bytes_.size(), colon + 1 + length);
}

void PMString::ReadWrite(IPMStream* stream) {
    if (!stream)
        return;
    std::string utf8 = stream->IsReading() ? std::string() : GetUTF8String();
    stream->XferString(utf8);
    if (stream->IsReading())
        SetCString(utf8);
}
