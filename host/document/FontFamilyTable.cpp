#include "host/document/FontFamilyTable.h"

#include "sdk/IPMFont.h"

namespace Galley {

UID FontFamilyTable::GetFontFamilyUID(const IPMFont* font) {
    if (!font)
        return kInvalidUID;
    DocumentFontFamily& family = familyNamed(font->GetFamilyName().GetUTF8String());
    family.addFace(font->GetStyleName().GetUTF8String());
    return family.uid();
}

UID FontFamilyTable::GetFontFamilyUID(const PMString& familyName) const {
    const std::string name = familyName.GetUTF8String();
    for (const auto& family : families_) {
        if (family->name() == name)
            return family->uid();
    }
    return kInvalidUID;
}

DocumentFontFamily& FontFamilyTable::familyNamed(const std::string& name) {
    for (const auto& family : families_) {
        if (family->name() == name)
            return *family;
    }
    families_.push_back(std::make_unique<DocumentFontFamily>(nextUID_(), name, resolver_));
    return *families_.back();
}

DocumentFontFamily* FontFamilyTable::family(UID uid) const {
    for (const auto& family : families_) {
        if (family->uid() == uid)
            return family.get();
    }
    return nullptr;
}

} // namespace Galley
