#pragma once

#include "sdk/HostTypes.h"
#include "sdk/PMString.h"

// The fonts a document uses, split into the ones the system lacks (missing) and the ones it
// has (used). Each entry is a font family of the document's database and a face name.
// The lists hold what the last Update found; entries are distinct and keep a stable order.
class IDocumentFontUsage {
public:
    virtual ~IDocumentFontUsage() = default;

    // Re-reads the document's text and styles and checks every font against the system.
    virtual void Update() = 0;

    virtual int32 GetMissingFontCount() const = 0;
    virtual UID GetMissingNthFontFamilyUID(int32 n) const = 0;
    virtual PMString GetMissingNthFontFaceName(int32 n) const = 0;

    virtual int32 GetUsedFontCount() const = 0;
    virtual UID GetUsedNthFontFamilyUID(int32 n) const = 0;
    virtual PMString GetUsedNthFontFaceName(int32 n) const = 0;
};
