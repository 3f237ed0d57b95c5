#pragma once

#include "sdk/HostTypes.h"
#include "sdk/PMString.h"

// A character attribute that commands apply to ranges of text.
class ITextAttribute {
public:
    virtual ~ITextAttribute() = default;
};

// The font-family attribute: the UID of a font family in the document's database.
class ITextAttrUID : public ITextAttribute {
public:
    virtual UID GetUIDData() const = 0;
    virtual void SetUIDData(UID uid) = 0;
};

// The face attribute: the face (style) name within the run's font family.
class ITextAttrFont : public ITextAttribute {
public:
    virtual PMString GetFontName() const = 0;
    virtual void SetFontName(const PMString& faceName) = 0;
};
