#include "ui/VellumineDialogController.h"

#include "document/IDFontSuite.h"
#include "foundation/HostText.h"
#include "foundation/Logger.h"
#include "resources/VellumineIDs.h"
#include "sdk/HostIdentifiers.h"
#include "sdk/IControlView.h"
#include "sdk/ISession.h"
#include "sdk/ITreeView.h"
#include "ui/DialogWidgets.h"
#include "ui/FontTreeSelection.h"
#include "ui/ITreeViewDataModel.h"
#include "ui/TreeViewDataNode.h"
#include "ui/VLMTreeviewObserver.h"

#include <algorithm>

using DialogWidgets::enable;
using DialogWidgets::find;

bool VellumineDialogController::Tree::complete() const {
    return widget && model && rows && selection &&
           widget->QueryAddIn(IID_ITREEVIEWHIERARCHYADAPTER) != nullptr;
}

VellumineDialogController::Tree VellumineDialogController::findTree() const {
    Tree tree;
    tree.widget = find(GetPanel(), kFontTreeWidgetID);
    if (tree.widget) {
        tree.model = QueryAddInAs<ITreeViewDataModel>(tree.widget, IID_ITREEVIEWDATAMODEL);
        tree.rows = tree.widget->GetTreeViewMgr();
        tree.selection = tree.widget->GetTreeViewController();
    }
    return tree;
}

void VellumineDialogController::InitializeDialogFields(IActiveContext* context) {
    CDialogController::InitializeDialogFields(context);
    // The tree's selection observer lives on the tree widget and cannot see its dialog.
    const Tree tree = findTree();
    if (auto* observer = QueryAddInAs<VLMTreeviewObserver>(tree.widget, IID_IOBSERVER))
        observer->setDialog(GetDialog());
    synchronizeDialog(false);
}

void VellumineDialogController::synchronizeDialog(bool force) {
    const Tree tree = findTree();
    if (!tree.complete())
        return;
    if (!force && !tree.model->NeedRebuild())
        return;
    // The rows go first: they hold identities that point into the tree the model frees.
    tree.rows->ClearTree(true);
    tree.model->Rebuild();
    tree.rows->ChangeRoot(true);
    selectionSync();
}

void VellumineDialogController::selectionSync() {
    const Tree tree = findTree();
    if (!tree.selection)
        return;
    NodeIDList selected;
    tree.selection->GetSelectedItems(selected);
    IPanelControlData* panel = GetPanel();
    IControlView* activateButton = find(panel, kActivateButtonWidgetID);
    IControlView* buy = find(panel, kBuyButtonWidgetID);
    IControlView* replace = find(panel, kReplaceButtonWidgetID);
    IControlView* info = find(panel, kInfoButtonWidgetID);

    const std::size_t count = selected.size();
    DialogWidgets::setText(activateButton, PMString(count == 0 ? kActiveAllButtonCaptionKey
                                                               : kActiveButtonCaptionKey));
    enable(activateButton, true);
    enable(buy, count == 1);
    enable(replace, count > 0);
    enable(info, count > 0);

    const auto nodes = FontTreeSelection::selectedNodes(selected);
    const bool everyRowHasContainer =
        std::all_of(nodes.begin(), nodes.end(),
                    [](const TreeViewDataNode* node) { return !node->GetContainerID().empty(); });
    const bool noneCanBeSupplied =
        std::none_of(nodes.begin(), nodes.end(), [](const TreeViewDataNode* node) {
            const auto record = node->GetData();
            return record && record->hasTypeMatching;
        });
    if (!everyRowHasContainer)
        enable(replace, false);
    if (noneCanBeSupplied) {
        enable(info, false);
        if (count > 0)
            enable(activateButton, false);
    }
}

void VellumineDialogController::ApplyDialogFields(IActiveContext* context, const WidgetID& widget) {
    CDialogController::ApplyDialogFields(context, widget);
    bool nothingSelected = true;
    VLMFontList records;
    {
        // The identities stay in here: the replacement dialog's wait may see the tree rebuilt.
        const Tree tree = findTree();
        NodeIDList selected;
        if (tree.selection)
            tree.selection->GetSelectedItems(selected);
        nothingSelected = selected.empty();
        records = FontTreeSelection::selectedRecords(selected);
    }
    VLM::IDFontSuite* suite = VLM::IDFontSuite::getFontSuite(false);
    switch (widget) {
    case kBuyButtonWidgetID:
        suite->buyFonts(records);
        break;
    case kInfoButtonWidgetID:
        suite->showInfo(records);
        break;
    case kOKButtonWidgetID:
        DoFontReplacements();
        break;
    case kReplaceButtonWidgetID:
        replaceSelected(records);
        break;
    case kActivateButtonWidgetID:
        activate(records, nothingSelected);
        break;
    default:
        break;
    }
}

void VellumineDialogController::replaceSelected(const VLMFontList& selected) {
    const std::string replacement = DoReplacerDialog();
    if (!replacement.empty()) {
        for (const auto& record : selected) {
            replacements_[record->font.psName] = replacement; // a later choice wins
            record->stateFlag1 = true;
        }
    }
    synchronizeDialog(true);
}

void VellumineDialogController::activate(const VLMFontList& selected, bool nothingSelected) {
    Logger::log("activation", "starting font activation");
    VLM::IDFontSuite* suite = VLM::IDFontSuite::getFontSuite(false);
    // Only an empty selection means "all": rows left out of the selection (pending or
    // replaced fonts) give an empty request, not every missing font.
    if (nothingSelected)
        suite->activateFonts(suite->getMissingFonts(suite->documentFonts, true));
    else
        suite->activateFonts(selected);
    Logger::log("activation", "ending font activation");
}

std::string VellumineDialogController::DoReplacerDialog() {
    IApplication* application = gSession ? gSession->QueryApplication() : nullptr;
    IDialogMgr* dialogs = application ? application->GetDialogMgr() : nullptr;
    IDialog* dialog =
        dialogs ? dialogs->CreateNewDialog(RsrcSpec(MLocaleSetting::GetLocale(), kVelluminePrefix,
                                                    kViewRsrcType, kReplacerDialogRsrcID),
                                           IDialog::kMovableModal)
                : nullptr;
    if (!dialog)
        return {};
    if (IControlView* panel = find(dialog->GetDialogPanel(), kReplacerPanelWidgetID))
        panel->SetBackgroundColor(kInterfaceMenuHighLight);
    dialog->Open();
    dialog->WaitForDialog(true);
    IIntData* chosen = dialog->GetIntData();
    IStringData* name = dialog->GetStringData();
    if (!chosen || !name || static_cast<int16>(chosen->GetInt()) == 0)
        return {};
    return Helpers::toString(name->GetString());
}

void VellumineDialogController::DoFontReplacements() {
    ILayoutUIUtils* layout = gSession ? gSession->QueryLayoutUIUtils() : nullptr;
    if (!layout)
        return;
    IDocument* document = layout->GetFrontDocument();
    VLM::IDFontSuite* suite = VLM::IDFontSuite::getFontSuite(false);
    for (const auto& [original, replacement] : replacements_)
        suite->replaceFont(document, original, replacement);
}
