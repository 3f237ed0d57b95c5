#pragma once

#include "sdk/HostTypes.h"
#include "sdk/PMString.h"

class IFontFamily;
class IPMFont;
class ISubject;

// The font manager's notice that a refresh of the font list is complete, so that what
// shows font lists (menus, font pickers) reads them again.
class IFontListNotices {
public:
    virtual ~IFontListNotices() = default;
    virtual void FontListRefreshed(bool includingNewFonts) = 0;
};

// The session's font manager: the fonts installed on the system.
//
// After a font-list update that changed the set of installed faces, its subject announces
// kFontSystemChangedMessage on protocol IID_IFONTMGR (sdk/HostIdentifiers.h).
class IFontMgr {
public:
    enum FontCountFilter : int32 { kAllFonts = 0, kOutlineFontsOnly = 1 };

    virtual ~IFontMgr() = default;

    // Number of installed faces. With `afterPendingUpdate` true the count waits for an
    // update in progress to finish; the host's updates run to completion inside
    // UpdateFontList, so both forms give the same number between updates.
    virtual int32 GetFontCount(bool afterPendingUpdate, int32 filter) const = 0;

    // Re-reads the installed fonts when the system's font folders changed since the last
    // read. Returns true when the set of faces changed (and the subject has announced it).
    virtual bool UpdateFontList() = 0;

    // The installed face known by `name`: a PostScript name, "Family\tStyle", a full name
    // ("Family Style") or a family name alone (its regular face, else its first face).
    // Null when no installed face answers to the name.
    virtual IPMFont* QueryFont(const PMString& name) const = 0;

    virtual int32 GetNumFontFamilies() const = 0;
    // Families in the order of their names; null when `index` is out of range.
    virtual IFontFamily* GetNthFontFamily(int32 index) const = 0;
    virtual IFontFamily* QueryFontFamily(const PMString& familyName) const = 0;

    virtual ISubject* GetSubject() = 0;
    // Null when the host has no such notice.
    virtual IFontListNotices* QueryFontListNotices() { return nullptr; }
};
