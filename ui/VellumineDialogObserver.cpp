#include "ui/VellumineDialogObserver.h"

#include "document/IDFontSuite.h"
#include "resources/VellumineIDs.h"
#include "sdk/HostIdentifiers.h"
#include "sdk/IControlView.h"
#include "sdk/ITreeView.h"
#include "ui/DialogNews.h"
#include "ui/DialogWidgets.h"
#include "ui/VellumineDialogController.h"

void VellumineDialogObserver::AutoAttach() {
    CDialogObserver::AutoAttach();
    AttachToWidget(kOKButtonWidgetID, IID_IBOOLEANCONTROLDATA);
    AttachToWidget(kFontListPanelWidgetID, IID_ITEXTCONTROLDATA);
    for (WidgetID button : {kInfoButtonWidgetID, kBuyButtonWidgetID, kActivateButtonWidgetID,
                            kReplaceButtonWidgetID, kFontTreeCaptionWidgetID})
        AttachToWidget(button, IID_IBOOLEANCONTROLDATA);
    DialogNews::listen(this);
}

void VellumineDialogObserver::AutoDetach() {
    CDialogObserver::AutoDetach();
    DetachFromWidget(kOKButtonWidgetID, IID_IBOOLEANCONTROLDATA);
    DetachFromWidget(kFontListPanelWidgetID, IID_ITEXTCONTROLDATA);
    for (WidgetID button : {kInfoButtonWidgetID, kFontTreeCaptionWidgetID, kBuyButtonWidgetID,
                            kActivateButtonWidgetID, kReplaceButtonWidgetID})
        DetachFromWidget(button, IID_IBOOLEANCONTROLDATA);
    DialogNews::stopListening(this);
}

void VellumineDialogObserver::Update(ClassID change, ISubject* subject, PMIID protocol,
                                     void* changedBy) {
    CDialogObserver::Update(change, subject, protocol, changedBy);
    auto* controller = dynamic_cast<VellumineDialogController*>(GetController());
    if (!controller)
        return;
    controller->selectionSync();
    if (change != kTrueStateMessage)
        return;
    // OK is among the buttons because Galley's dialog base does not hand its press to the
    // controller itself.
    const WidgetID pressed = DialogWidgets::idOfSubject(
        GetPanel(), subject,
        {kOKButtonWidgetID, kInfoButtonWidgetID, kBuyButtonWidgetID, kActivateButtonWidgetID,
         kReplaceButtonWidgetID, kFontTreeCaptionWidgetID});
    if (pressed != kInvalidWidgetID)
        controller->ApplyDialogFields(nullptr, pressed);
}

void VellumineDialogObserver::CloseDialog(int16 reason) {
    IControlView* tree = DialogWidgets::find(GetPanel(), kFontTreeWidgetID);
    if (ITreeViewMgr* rows = tree ? tree->GetTreeViewMgr() : nullptr)
        rows->ClearTree(true);
    // Nothing here marks the dialog as closed already, so the base always closes it.
    CDialogObserver::CloseDialog(reason);
}

void VellumineDialogObserver::OnVLMNotify(const std::string&) {
    VLM::IDFontSuite* suite = VLM::IDFontSuite::getFontSuite(false);
    const VLMFontList fonts = suite->documentFonts;
    if (suite->getMissingFonts(fonts, false).empty()) {
        if (IDialog* dialog = GetDialog())
            dialog->Close(0);
        return;
    }
    if (auto* controller = dynamic_cast<VellumineDialogController*>(GetController()))
        controller->synchronizeDialog(false);
}
