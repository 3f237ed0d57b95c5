#pragma once

class IFontMgr;
class ITextAttrUtils;

// The running host session: services that are not tied to a document.
class ISession {
public:
    virtual ~ISession() = default;
    // Null while the session has no font system.
    virtual IFontMgr* GetFontMgr() = 0;
    virtual ITextAttrUtils* GetTextAttrUtils() = 0;
};

// The current session; set by the host before any plug-in code runs, null otherwise.
extern ISession* gSession;
