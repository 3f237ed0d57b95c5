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
    auto found = byName_.find(familyName.GetUTF8String());
    return found == byName_.end() ? kInvalidUID : found->second->uid();
}

DocumentFontFamily& FontFamilyTable::familyNamed(const std::string& name) {
    auto found = byName_.find(name);
    if (found != byName_.end())
        return *found->second;
    families_.push_back(std::make_unique<DocumentFontFamily>(nextUID_(), name, resolver_));
    DocumentFontFamily* family = families_.back().get();
    byName_.emplace(name, family);
    byUID_.emplace(family->uid(), family);
    return *family;
}

DocumentFontFamily* FontFamilyTable::family(UID uid) const {
    auto found = byUID_.find(uid);
    return found == byUID_.end() ? nullptr : found->second;
}

} // namespace Galley
