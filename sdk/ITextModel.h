#pragma once

#include "sdk/HostTypes.h"

class IAttributeStrand;
class IComposeScanner;

// The text of one story and its attributes.
class ITextModel {
public:
    virtual ~ITextModel() = default;
    virtual UID GetUID() const = 0;
    // Characters in the story, the paragraph breaks included.
    virtual int32 TotalLength() const = 0;
    // The character-attribute strand that carries fonts; null when the story has none.
    virtual IAttributeStrand* QueryFontStrand() = 0;
    virtual IComposeScanner* QueryComposeScanner() = 0;
};
