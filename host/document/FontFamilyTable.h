#pragma once

#include "host/document/DocumentFontFamily.h"
#include "sdk/IDocFontMgr.h"

#include <functional>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace Galley {

class FontResolver;

// The font families of one document. A family gets its UID the first time the document
// meets its name and keeps it for the life of the document.
class FontFamilyTable : public IDocFontMgr {
public:
    FontFamilyTable(const FontResolver& resolver, std::function<UID()> nextUID)
        : resolver_(resolver), nextUID_(std::move(nextUID)) {}

    UID GetFontFamilyUID(const IPMFont* font) override;
    UID GetFontFamilyUID(const PMString& familyName) const override;

    // The family of that name, added when new.
    DocumentFontFamily& familyNamed(const std::string& name);
    // Null when no family has that UID.
    DocumentFontFamily* family(UID uid) const;

private:
    const FontResolver& resolver_;
    std::function<UID()> nextUID_;
    std::vector<std::unique_ptr<DocumentFontFamily>> families_;
    std::unordered_map<std::string, DocumentFontFamily*> byName_;
    std::unordered_map<UID, DocumentFontFamily*> byUID_;
};

} // namespace Galley
