#pragma once

#include "sdk/HostTypes.h"

// The host's numeric identifiers that plug-in logic compares against or passes on.

// --- Services and signals ---------------------------------------------------------------
// Document signal sent after a document has been opened and fully built.
inline constexpr ServiceID kAfterOpenDocSignalResponderService = 3598;
// Other document signals a responder may register for; Galley sends them around opening and
// closing documents, and a responder may ignore them.
inline constexpr ServiceID kBeforeCloseDocSignalResponderService = 3597;
inline constexpr ServiceID kAfterNewDocSignalResponderService = 90882;
inline constexpr ServiceID kInvalidService = 0;

// --- Interfaces (protocols) -------------------------------------------------------------
// The session's font manager; also the protocol on which its subject announces changes.
inline constexpr PMIID IID_IFONTMGR = 15873;
inline constexpr PMIID IID_IDIALOG = 282;
inline constexpr PMIID IID_IDIALOGMGR = 284;
// A button's state; buttons announce kTrueStateMessage on it when pressed.
inline constexpr PMIID IID_IBOOLEANCONTROLDATA = 1538;
// A text widget's content; text widgets announce kTextChangeStateMessage on it.
inline constexpr PMIID IID_ITEXTCONTROLDATA = 1540;
inline constexpr PMIID IID_IPANELCONTROLDATA = 1543;
inline constexpr PMIID IID_IPROGRESSBARCONTROLDATA = 1545;
inline constexpr PMIID IID_IDIALOGCONTROLLER = 1578;
inline constexpr PMIID IID_ITREEVIEWCONTROLLER = 1642;
inline constexpr PMIID IID_ITREEVIEWMGR = 1643;
inline constexpr PMIID IID_ITREEVIEWHIERARCHYADAPTER = 1651;
inline constexpr PMIID IID_ITREEVIEWWIDGETMGR = 1652;
// A tree's or list's selection; announced with kListSelectionChangedMessage.
inline constexpr PMIID IID_ILISTCONTROLDATA = 1600;
inline constexpr PMIID IID_IEVENTHANDLER = 1690;
inline constexpr PMIID IID_IWIDGETVIEW = 1695;
inline constexpr PMIID IID_IINTDATA = 4099;
inline constexpr PMIID IID_ISTRINGDATA = 4103;
inline constexpr PMIID IID_IOBSERVER = 4000;
inline constexpr PMIID IID_ILAYOUTUIUTILS = 118846;

// --- Changes ----------------------------------------------------------------------------
// Announced by the font manager's subject when the set of installed fonts changed after a
// font-list update.
inline constexpr ClassID kFontSystemChangedMessage = 16074;
// A button was pressed.
inline constexpr ClassID kTrueStateMessage = 1896;
// A text widget's text changed.
inline constexpr ClassID kTextChangeStateMessage = 1898;
// The selection of a tree view or list box changed.
inline constexpr ClassID kListSelectionChangedMessage = 1900;

// --- Widgets ----------------------------------------------------------------------------
// The standard buttons of every dialog. Pressing either closes the dialog once its observers
// have been told (OK after the controller applied the fields).
inline constexpr WidgetID kOKButtonWidgetID = 1538;
inline constexpr WidgetID kCancelButton_WidgetID = 1539;

// --- Alerts -----------------------------------------------------------------------------
inline constexpr int16 kOKButton = 1;
inline constexpr int16 kCautionIcon = 1;
