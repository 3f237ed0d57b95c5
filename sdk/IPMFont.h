#pragma once

#include "sdk/HostTypes.h"
#include "sdk/PMString.h"

// One installed face, as the session's font manager lists it.
class IPMFont {
public:
    // The host's numbering of font technologies. The values are fixed: documents and
    // plug-ins store and compare them.
    enum FontType : int32 {
        kType1 = 0,       // PostScript Type 1
        kTrueType = 1,    // TrueType outlines in a .ttf/.ttc container
        kCID = 2,         // CID-keyed PostScript
        kType3 = 3,       // PostScript Type 3 (glyphs as procedures)
        kBitmap = 4,      // bitmap-only faces (PCF, BDF, Windows FNT)
        kType42 = 5,      // TrueType wrapped for PostScript
        kOpenTypeCFF = 6, // OpenType with PostScript (CFF) outlines
        kOpenTypeCID = 7, // OpenType with CID-keyed CFF outlines
        kOpenTypeTT = 8,  // OpenType with TrueType outlines (.otf container)
        kUnknownFontType = 9
    };

    virtual ~IPMFont() = default;
    virtual PMString GetPostScriptName() const = 0;
    virtual PMString GetFamilyName() const = 0;
    // The face (style) name within its family, such as "Bold Italic".
    virtual PMString GetStyleName() const = 0;
    virtual FontType GetFontType() const = 0;
};
