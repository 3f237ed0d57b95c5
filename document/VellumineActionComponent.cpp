#include "document/VellumineActionComponent.h"

#include "resources/VellumineIDs.h"
#include "sdk/CAlert.h"
#include "sdk/HostIdentifiers.h"
#include "sdk/IDialog.h"
#include "sdk/ISession.h"

namespace VLM {

void VellumineActionComponent::DoAction(IActiveContext*, ActionID action, Point, IPMUnknown*) {
    switch (action) {
    case kVellumineAboutActionID:
        DoAbout();
        break;
    case kVellumineDialogActionID:
        DoDialog();
        break;
    default:
        break;
    }
}

void VellumineActionComponent::DoAbout() {
    CAlert::ModalAlert(PMString(kVellumineAboutBoxStringKey), PMString("OK"), PMString(),
                       PMString(), kOKButton, kCautionIcon);
}

void VellumineActionComponent::DoDialog() {
    IApplication* application = gSession ? gSession->QueryApplication() : nullptr;
    IDialogMgr* dialogs = application ? application->GetDialogMgr() : nullptr;
    if (!dialogs)
        return;
    IDialog* dialog =
        dialogs->CreateNewDialog(RsrcSpec(MLocaleSetting::GetLocale(), kVelluminePrefix,
                                          kViewRsrcType, kVellumineDialogRsrcID),
                                 IDialog::kMovableModal);
    if (dialog)
        dialog->Open(nullptr);
}

} // namespace VLM
