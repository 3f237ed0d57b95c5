#pragma once

#include "sdk/HostTypes.h"
#include "sdk/PMString.h"

class IPMFont;

// The document's side of font management: the font families its text may refer to.
class IDocFontMgr {
public:
    virtual ~IDocFontMgr() = default;
    // UID of the document's family for an installed font, adding the family to the document
    // when it has none by that name yet. kInvalidUID for a null font.
    virtual UID GetFontFamilyUID(const IPMFont* font) = 0;
    // UID of the document's family of that name, or kInvalidUID when it has none.
    virtual UID GetFontFamilyUID(const PMString& familyName) const = 0;
};
