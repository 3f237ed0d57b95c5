#include "ui/ReplacerDialog.h"

#include "resources/VellumineIDs.h"
#include "sdk/HostIdentifiers.h"
#include "sdk/IControlView.h"
#include "sdk/IFontFamily.h"
#include "sdk/IFontMgr.h"
#include "sdk/IPMFont.h"
#include "sdk/ISession.h"
#include "ui/DialogWidgets.h"
#include "ui/SDKListBoxHelper.h"

namespace {

SDKListBoxHelper listBoxOf(IPanelControlData* panel) {
    return SDKListBoxHelper(panel, kVelluminePrefix, kReplacerListBoxWidgetID,
                            kReplacerElementRsrcID);
}

bool sameFace(const IPMFont* a, const IPMFont& b) {
    return a == &b ||
           (a && a->GetPostScriptName() == b.GetPostScriptName() &&
            a->GetFamilyName() == b.GetFamilyName() && a->GetStyleName() == b.GetStyleName());
}

// The name the list shows and font replacement receives: "Family Style" where the host's
// font manager finds this very face by it, else the face's PostScript name (a full name can
// differ from family and style, and font replacement looks the face up by this name).
PMString listedName(const IFontMgr& fonts, const IPMFont& font) {
    PMString name = font.GetFamilyName();
    const PMString style = font.GetStyleName();
    if (!style.IsEmpty()) {
        name.Append(std::string_view(" "));
        name.Append(style);
    }
    if (!sameFace(fonts.QueryFont(name), font) && !font.GetPostScriptName().IsEmpty())
        name = font.GetPostScriptName();
    name.SetTranslatable(false);
    return name;
}

} // namespace

void ReplacerDialogController::InitializeDialogFields(IActiveContext* context) {
    CDialogController::InitializeDialogFields(context);
    synchronizeDialog();
}

void ReplacerDialogController::synchronizeDialog() {
    SDKListBoxHelper listBox = listBoxOf(GetPanel());
    listBox.EmptyCurrentListBox();
    names_.clear();
    IFontMgr* fonts = gSession ? gSession->GetFontMgr() : nullptr;
    if (!fonts)
        return;
    // Positions count added elements only, so element n always shows names_[n].
    int position = 0;
    for (int32 familyIndex = 0; familyIndex < fonts->GetNumFontFamilies(); ++familyIndex) {
        IFontFamily* family = fonts->GetNthFontFamily(familyIndex);
        if (!family)
            return;
        for (int32 faceIndex = 0; faceIndex < family->GetNumFaces(); ++faceIndex) {
            IPMFont* font = family->QueryFace(family->GetFaceName(faceIndex));
            if (!font)
                continue;
            const PMString name = listedName(*fonts, *font);
            if (!listBox.AddElement(name, kReplacerElementTextWidgetID, position))
                continue;
            names_.push_back(name);
            ++position;
        }
    }
}

void ReplacerDialogController::ApplyDialogFields(IActiveContext* context, const WidgetID& widget) {
    CDialogController::ApplyDialogFields(context, widget);
    IDialog* dialog = GetDialog();
    if (!dialog)
        return;
    int32 chosen = 0;
    if (widget == kOKButtonWidgetID) {
        const int selected = listBoxOf(GetPanel()).getSelected();
        const bool valid = selected >= 0 && static_cast<std::size_t>(selected) < names_.size();
        if (IStringData* result = dialog->GetStringData())
            result->Set(valid ? names_[static_cast<std::size_t>(selected)] : PMString());
        chosen = valid ? 1 : 0;
    }
    if (IIntData* flag = dialog->GetIntData())
        flag->Set(chosen);
}

void ReplacerDialogObserver::AutoAttach() {
    CDialogObserver::AutoAttach();
    // OK and Cancel reach the controller through this observer: Galley's dialog base
    // closes the dialog on them but does not apply its fields.
    AttachToWidget(kOKButtonWidgetID, IID_IBOOLEANCONTROLDATA);
    AttachToWidget(kCancelButton_WidgetID, IID_IBOOLEANCONTROLDATA);
    AttachToWidget(kFontListPanelWidgetID, IID_ITEXTCONTROLDATA);
}

void ReplacerDialogObserver::AutoDetach() {
    CDialogObserver::AutoDetach();
    DetachFromWidget(kOKButtonWidgetID, IID_IBOOLEANCONTROLDATA);
    DetachFromWidget(kCancelButton_WidgetID, IID_IBOOLEANCONTROLDATA);
    DetachFromWidget(kFontListPanelWidgetID, IID_ITEXTCONTROLDATA);
}

void ReplacerDialogObserver::Update(ClassID change, ISubject* subject, PMIID protocol,
                                    void* changedBy) {
    CDialogObserver::Update(change, subject, protocol, changedBy);
    if (change != kTrueStateMessage)
        return;
    const WidgetID pressed = DialogWidgets::idOfSubject(
        GetPanel(), subject, {kOKButtonWidgetID, kCancelButton_WidgetID});
    IDialogController* controller = GetController();
    if (controller && pressed != kInvalidWidgetID)
        controller->ApplyDialogFields(nullptr, pressed);
}

bool ReplacerEventHandler::ButtonDblClk(IEvent*) {
    IApplication* application = gSession ? gSession->QueryApplication() : nullptr;
    IDialogMgr* dialogs = application ? application->GetDialogMgr() : nullptr;
    if (IDialog* front = dialogs ? dialogs->GetFrontDialog() : nullptr)
        front->PressDefaultButton();
    return false;
}
