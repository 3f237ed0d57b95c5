#include "ui/WaitingDialog.h"

#include "document/IDFontSuite.h"
#include "foundation/NumberText.h"
#include "resources/VellumineIDs.h"
#include "sdk/IControlView.h"
#include "sdk/IIdleTask.h"
#include "ui/DialogNews.h"
#include "ui/DialogWidgets.h"

namespace {

CIdleTask* refreshTask(IDialog* dialog) {
    return dialog ? dynamic_cast<CIdleTask*>(dialog->QueryAddIn(IID_IVELLUMINEREFRESHTASK))
                  : nullptr;
}

} // namespace

std::string WaitingDialogObserver::progressText(int activated, int total) {
    return "Please Wait, " + Tamrik::toString(activated) + " of " + Tamrik::toString(total) +
           " fonts activated";
}

void WaitingDialogObserver::AutoAttach() {
    IClosingDialogObserver::AutoAttach();
    if (CIdleTask* task = refreshTask(GetDialog())) {
        task->UninstallTask();
        task->InstallTask(0);
    }
    DialogNews::listen(this);
}

void WaitingDialogObserver::AutoDetach() {
    IClosingDialogObserver::AutoDetach();
    if (CIdleTask* task = refreshTask(GetDialog()))
        task->UninstallTask();
    DialogNews::stopListening(this);
}

void WaitingDialogObserver::CloseDialog(int16 reason) {
    if (closed)
        return;
    closed = true;
    IClosingDialogObserver::CloseDialog(reason);
}

void WaitingDialogObserver::OnVLMNotify(const std::string&) {
    IPanelControlData* panel = GetPanel();
    if (!panel)
        return;
    IControlView* bar = DialogWidgets::find(panel, kWaitingProgressBarWidgetID);
    IControlView* text = DialogWidgets::find(panel, kWaitingTextWidgetID);

    VLM::IDFontSuite* suite = VLM::IDFontSuite::getFontSuite(false);
    const VLMFontList fonts = suite->documentFonts;
    const int total = static_cast<int>(fonts.size());
    const int missing = static_cast<int>(suite->getMissingFonts(fonts, false).size());
    const int activated = total - missing;
    if (missing == 0) {
        CloseDialog(0);
        return;
    }
    DialogWidgets::setText(
        text, PMString(progressText(activated, total), PMString::kDontTranslateDuringCall));
    if (IProgressBarControlData* progress = bar ? bar->GetProgressBarControlData() : nullptr) {
        // The host's bars keep 16-bit values: totals above 32767 wrap, as they always did.
        progress->SetRange(0, static_cast<int16>(total), true, true);
        progress->SetValue(static_cast<int16>(activated), true, true);
        bar->Invalidate();
    }
}
