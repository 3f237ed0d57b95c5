#pragma once

#include "host/idml/FontReference.h"
#include "sdk/IDocumentFontUsage.h"

#include <vector>

namespace Galley {

class IdmlDocument;

// The document's faces split into missing and used against the session's fonts, each list
// in the order of collectFontUsage.
class DocumentFontUsage : public IDocumentFontUsage {
public:
    explicit DocumentFontUsage(IdmlDocument& document) : document_(document) {}

    void Update() override;
    int32 GetMissingFontCount() const override { return static_cast<int32>(missing_.size()); }
    UID GetMissingNthFontFamilyUID(int32 n) const override { return uidAt(missing_, n); }
    PMString GetMissingNthFontFaceName(int32 n) const override { return faceAt(missing_, n); }
    int32 GetUsedFontCount() const override { return static_cast<int32>(used_.size()); }
    UID GetUsedNthFontFamilyUID(int32 n) const override { return uidAt(used_, n); }
    PMString GetUsedNthFontFaceName(int32 n) const override { return faceAt(used_, n); }

    struct Entry {
        UID family = kInvalidUID;
        FontKey key;
    };
    const std::vector<Entry>& missing() const { return missing_; }
    const std::vector<Entry>& used() const { return used_; }

private:
    static UID uidAt(const std::vector<Entry>& list, int32 n);
    static PMString faceAt(const std::vector<Entry>& list, int32 n);

    IdmlDocument& document_;
    std::vector<Entry> missing_;
    std::vector<Entry> used_;
};

} // namespace Galley
