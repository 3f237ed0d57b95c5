#pragma once

#include "sdk/HostTypes.h"

class ITextAttrFont;
class ITextAttrUID;

// Reads the attributes in force over a range of a story's text [start, end).
// Each query returns the attribute when the whole range has one value, and null when the
// range is empty, lies outside the text or mixes values.
class IComposeScanner {
public:
    virtual ~IComposeScanner() = default;
    virtual const ITextAttrUID* QueryFontFamilyAttribute(TextIndex start, TextIndex end) const = 0;
    virtual const ITextAttrFont* QueryFontFaceAttribute(TextIndex start, TextIndex end) const = 0;
};
