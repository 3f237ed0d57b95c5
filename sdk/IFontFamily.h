#pragma once

#include "sdk/HostTypes.h"
#include "sdk/IPMFont.h"
#include "sdk/PMString.h"

// A font family as a document (or the session) knows it: a family name and its faces.
// Faces are named by their style name; a face may be known from the document alone and
// then has no installed font behind it.
class IFontFamily {
public:
    virtual ~IFontFamily() = default;

    // The family name as the document records it.
    virtual PMString GetFamilyName() const = 0;
    // The family name by which the host's font manager knows the family (the installed
    // family's own name); the document's name when no face of it is installed.
    virtual void GetHostFamilyName(PMString& name) const = 0;

    virtual int32 GetNumFaces() const = 0;
    // Style name of face `index` (0 <= index < GetNumFaces()); empty when out of range.
    virtual PMString GetFaceName(int32 index) const = 0;

    // PostScript name of the face; empty when neither the installed font nor the document
    // gives one.
    virtual PMString GetFacePostScriptName(const PMString& faceName) const = 0;
    virtual IPMFont::FontType GetFaceFontType(const PMString& faceName) const = 0;
    // The installed font of the face, or null when the face is not installed.
    virtual IPMFont* QueryFace(const PMString& faceName) const = 0;
};
