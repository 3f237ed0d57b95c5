#pragma once

#include "sdk/HostTypes.h"

// The plug-in's identifiers: all of them are the prefix plus a small number.

inline constexpr PluginID kVelluminePrefix = 0x11F300;

// --- Menu actions -----------------------------------------------------------------------
inline constexpr ActionID kVellumineAboutActionID = 0x11F300;
inline constexpr ActionID kVellumineDialogActionID = 0x11F304;

// --- Interfaces of the plug-in on host objects ------------------------------------------
// The refresh idle task, reachable from the progress dialog.
inline constexpr PMIID IID_IVELLUMINEREFRESHTASK = 0x11F300;
// The list element's own event handler (double-click).
inline constexpr PMIID IID_IVLMELEMENTEVENTHANDLER = 0x11F305;
// The tree model on the tree widget.
inline constexpr PMIID IID_ITREEVIEWDATAMODEL = 0x11F308;
// The font-change observer on the session.
inline constexpr PMIID IID_IFONTCHANGEOBSERVER = 0x11F309;

// --- Tree nodes -------------------------------------------------------------------------
inline constexpr int32 kVLMFontNodeType = 0x11F30D;

// --- Dialogs and rows ('VIEW' resources) ------------------------------------------------
inline constexpr RsrcID kVellumineDialogRsrcID = 250;
inline constexpr RsrcID kWaitingDialogRsrcID = 302;
inline constexpr RsrcID kFontRowRsrcID = 303;
inline constexpr RsrcID kMatchRowRsrcID = 304;
inline constexpr RsrcID kReplacerDialogRsrcID = 0x11F30E;
inline constexpr RsrcID kReplacerElementRsrcID = 0x11F30F;

// --- Widgets ----------------------------------------------------------------------------
// The dialogs' and rows' own top-level widgets.
inline constexpr WidgetID kVellumineDialogWidgetID = 0x11F31C;
inline constexpr WidgetID kWaitingDialogWidgetID = 0x11F323;
inline constexpr WidgetID kReplacerDialogWidgetID = 0x11F30E;
inline constexpr WidgetID kFontRowWidgetID = 0x11F310;
inline constexpr WidgetID kMatchRowWidgetID = 0x11F311;
inline constexpr WidgetID kReplacerPanelWidgetID = 0x11F301;
inline constexpr WidgetID kInfoButtonWidgetID = 0x11F302;
inline constexpr WidgetID kFontListPanelWidgetID = 0x11F306;
inline constexpr WidgetID kRowNameWidgetID = 0x11F307;
inline constexpr WidgetID kRowPostScriptNameWidgetID = 0x11F308;
inline constexpr WidgetID kRowTechnologyWidgetID = 0x11F309;
inline constexpr WidgetID kRowStatusWidgetID = 0x11F30A;
inline constexpr WidgetID kBuyButtonWidgetID = 0x11F30B;
inline constexpr WidgetID kActivateButtonWidgetID = 0x11F30C;
inline constexpr WidgetID kReplaceButtonWidgetID = 0x11F30D;
// The replacement list's element (the root of its element resource) and its text.
inline constexpr WidgetID kReplacerElementWidgetID = 0x11F30F;
inline constexpr WidgetID kReplacerListBoxWidgetID = 0x11F312;
inline constexpr WidgetID kReplacerElementTextWidgetID = 0x11F313;
inline constexpr WidgetID kFontTreeWidgetID = 0x11F31B;
inline constexpr WidgetID kFontTreeCaptionWidgetID = 0x11F31F;
inline constexpr WidgetID kWaitingProgressBarWidgetID = 0x11F320;
inline constexpr WidgetID kWaitingPanelWidgetID = 0x11F321;
inline constexpr WidgetID kWaitingTextWidgetID = 0x11F322;

// --- Implementations registered with the host --------------------------------------------
inline constexpr ImplementationID kDocumentServiceProviderImpl = 0x11F340;
inline constexpr ImplementationID kDocumentResponderImpl = 0x11F341;
inline constexpr ImplementationID kVellumineActionComponentImpl = 0x11F342;
inline constexpr ImplementationID kFontChangeObserverImpl = 0x11F343;
inline constexpr ImplementationID kRefreshIdleTaskImpl = 0x11F344;
inline constexpr ImplementationID kVellumineDialogControllerImpl = 0x11F345;
inline constexpr ImplementationID kVellumineDialogObserverImpl = 0x11F346;
inline constexpr ImplementationID kWaitingDialogControllerImpl = 0x11F347;
inline constexpr ImplementationID kWaitingDialogObserverImpl = 0x11F348;
inline constexpr ImplementationID kReplacerDialogControllerImpl = 0x11F349;
inline constexpr ImplementationID kReplacerDialogObserverImpl = 0x11F34A;
inline constexpr ImplementationID kTreeViewDataModelImpl = 0x11F34B;
inline constexpr ImplementationID kTreeViewHierarchyAdapterImpl = 0x11F34C;
inline constexpr ImplementationID kTreeViewWidgetMgrImpl = 0x11F34D;
inline constexpr ImplementationID kTreeViewObserverImpl = 0x11F34E;
inline constexpr ImplementationID kReplacerEventHandlerImpl = 0x11F34F;
inline constexpr ImplementationID kProgressBarWidgetViewImpl = 0x11F350;

// --- String keys ------------------------------------------------------------------------
#define VLM_KEY(name) "0x11f300k" #name "Key"
inline constexpr const char* kVellumineNotFoundKey = VLM_KEY(VellumineNotFound);
inline constexpr const char* kVellumineTooOldKey = VLM_KEY(VellumineTooOld);
inline constexpr const char* kVellumineConvertedDocTextKey = VLM_KEY(VellumineConvertedDocText);
inline constexpr const char* kVellumineAboutBoxStringKey = VLM_KEY(VellumineAboutBoxString);
inline constexpr const char* kVellumineMulitpleTextKey = VLM_KEY(VellumineMulitpleText);
inline constexpr const char* kVelluminePendingTextKey = VLM_KEY(VelluminePendingText);
inline constexpr const char* kVellumineAvailableTextKey = VLM_KEY(VellumineAvailableText);
inline constexpr const char* kVellumineMissingTextKey = VLM_KEY(VellumineMissingText);
inline constexpr const char* kVellumineReplacedTextKey = VLM_KEY(VellumineReplacedText);
inline constexpr const char* kActiveButtonCaptionKey = VLM_KEY(ActiveButtonCaption);
inline constexpr const char* kActiveAllButtonCaptionKey = VLM_KEY(ActiveAllButtonCaption);
// Menu entries.
inline constexpr const char* kAboutMenuKey = VLM_KEY(AboutMenu);
inline constexpr const char* kFontsMenuKey = VLM_KEY(FontsMenu);
// Texts of the dialog descriptions (resources/*.ui), listed here so that every key is known.
inline constexpr const char* kFontsDialogTitleKey = VLM_KEY(FontsDialogTitle);
inline constexpr const char* kFontTreeCaptionKey = VLM_KEY(FontTreeCaption);
inline constexpr const char* kFontListHintKey = VLM_KEY(FontListHint);
inline constexpr const char* kInfoButtonCaptionKey = VLM_KEY(InfoButtonCaption);
inline constexpr const char* kBuyButtonCaptionKey = VLM_KEY(BuyButtonCaption);
inline constexpr const char* kReplaceButtonCaptionKey = VLM_KEY(ReplaceButtonCaption);
inline constexpr const char* kOKButtonCaptionKey = VLM_KEY(OKButtonCaption);
inline constexpr const char* kCancelButtonCaptionKey = VLM_KEY(CancelButtonCaption);
inline constexpr const char* kWaitingDialogTitleKey = VLM_KEY(WaitingDialogTitle);
inline constexpr const char* kWaitingTextKey = VLM_KEY(WaitingText);
inline constexpr const char* kWaitingHintKey = VLM_KEY(WaitingHint);
inline constexpr const char* kReplacerDialogTitleKey = VLM_KEY(ReplacerDialogTitle);
inline constexpr const char* kReplacerHintKey = VLM_KEY(ReplacerHint);
#undef VLM_KEY
