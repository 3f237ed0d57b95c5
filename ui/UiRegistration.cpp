#include "ui/UiRegistration.h"
#include "ui/VLMProgressBarWidgetView.h"

#include "resources/VellumineIDs.h"
#include "sdk/HostIdentifiers.h"
#include "sdk/PluginRegistry.h"
#include "ui/ReplacerDialog.h"
#include "ui/TreeViewDataModel.h"
#include "ui/VLMTreeViewWidgetMgr.h"
#include "ui/VLMTreeviewHierarchyAdapater.h"
#include "ui/VLMTreeviewObserver.h"
#include "ui/VellumineDialogController.h"
#include "ui/VellumineDialogObserver.h"
#include "ui/WaitingDialog.h"

#include <memory>

namespace VLM {

namespace {

// Every object here lives on a host object: its dialog, or the widget it serves.
template <typename T>
std::unique_ptr<IPMUnknown> makeOn(IPMUnknown* boss) {
    return std::make_unique<T>(boss);
}

} // namespace

void registerFontsDialogs(IPluginRegistry& registry) {
    registry.RegisterDialog(kVellumineDialogRsrcID, "FontsDialog.ui",
                            kVellumineDialogControllerImpl, &makeOn<VellumineDialogController>,
                            kVellumineDialogObserverImpl, &makeOn<VellumineDialogObserver>);
    registry.RegisterDialog(kWaitingDialogRsrcID, "WaitingDialog.ui", kWaitingDialogControllerImpl,
                            &makeOn<WaitingDialogController>, kWaitingDialogObserverImpl,
                            &makeOn<WaitingDialogObserver>);
    registry.RegisterDialog(kReplacerDialogRsrcID, "ReplacerDialog.ui",
                            kReplacerDialogControllerImpl, &makeOn<ReplacerDialogController>,
                            kReplacerDialogObserverImpl, &makeOn<ReplacerDialogObserver>);

    registry.RegisterWidgetResource(kFontRowRsrcID, "FontRow.ui");
    registry.RegisterWidgetResource(kMatchRowRsrcID, "MatchRow.ui");
    registry.RegisterWidgetResource(kReplacerElementRsrcID, "ReplacerElement.ui");

    // The model first: the adapter and the rows read it.
    registry.RegisterWidgetAddIn(kFontTreeWidgetID, IID_ITREEVIEWDATAMODEL, kTreeViewDataModelImpl,
                                 &makeOn<TreeViewDataModel>);
    registry.RegisterWidgetAddIn(kFontTreeWidgetID, IID_ITREEVIEWHIERARCHYADAPTER,
                                 kTreeViewHierarchyAdapterImpl,
                                 &makeOn<VLMTreeviewHierarchyAdapater>);
    registry.RegisterWidgetAddIn(kFontTreeWidgetID, IID_ITREEVIEWWIDGETMGR, kTreeViewWidgetMgrImpl,
                                 &makeOn<VLMTreeViewWidgetMgr>);
    registry.RegisterWidgetAddIn(kFontTreeWidgetID, IID_IOBSERVER, kTreeViewObserverImpl,
                                 &makeOn<VLMTreeviewObserver>);
    registry.RegisterWidgetAddIn(kReplacerElementWidgetID, IID_IEVENTHANDLER,
                                 kReplacerEventHandlerImpl, &makeOn<ReplacerEventHandler>);
    registry.RegisterWidgetAddIn(kWaitingProgressBarWidgetID, IID_IWIDGETVIEW,
                                 kProgressBarWidgetViewImpl,
                                 [](IPMUnknown*) -> std::unique_ptr<IPMUnknown> {
                                     return std::make_unique<VLMProgressBarWidgetView::View>();
                                 });

    registry.RegisterStringTable("en", "strings.en");
}

} // namespace VLM
