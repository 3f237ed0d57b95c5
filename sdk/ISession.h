#pragma once

#include "sdk/HostTypes.h"

class IApplication;
class IFontMgr;
class ILayoutUIUtils;
class IObserver;
class ITextAttrUtils;

// The session's document views: after fonts arrived or went, views set their text again in
// the fonts now installed.
class IDocumentViews {
public:
    virtual ~IDocumentViews() = default;
    // Marks every document's composition as out of date.
    virtual void InvalidateAllViews() = 0;
    // Brings the views up to date: at once, or (false) at the host's next idle moment.
    virtual void UpdateViews(bool immediately) = 0;
};

// The running host session: services that are not tied to a document.
class ISession {
public:
    virtual ~ISession() = default;
    // Null while the session has no font system.
    virtual IFontMgr* GetFontMgr() = 0;
    virtual ITextAttrUtils* GetTextAttrUtils() = 0;
    // Null in a session without a user interface (the font report, tests).
    virtual IApplication* QueryApplication() { return nullptr; }
    virtual ILayoutUIUtils* QueryLayoutUIUtils() { return nullptr; }
    // The observer a plug-in registered on the session under `iid`; null when none.
    virtual IObserver* QueryObserver(PMIID /*iid*/) { return nullptr; }
    virtual IDocumentViews* QueryDocumentViews() { return nullptr; }
};

// The current session; set by the host before any plug-in code runs, null otherwise.
extern ISession* gSession;
