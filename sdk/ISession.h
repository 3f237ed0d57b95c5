#pragma once

#include "sdk/HostTypes.h"

class IApplication;
class IFontMgr;
class ILayoutUIUtils;
class IObserver;
class ITextAttrUtils;

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
};

// The current session; set by the host before any plug-in code runs, null otherwise.
extern ISession* gSession;
