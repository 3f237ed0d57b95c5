#include "host/document/DocumentFontUsage.h"

#include "host/document/FontUsage.h"
#include "host/document/IdmlDocument.h"

namespace Galley {

void DocumentFontUsage::Update() {
    missing_.clear();
    used_.clear();
    for (FontKey& key :
         collectFontUsage(document_.stories(), document_.styles(), document_.catalog())) {
        DocumentFontFamily& family = document_.families().familyNamed(key.family);
        family.addFace(key.style);
        bool installed = document_.resolver().installed(key) != nullptr;
        (installed ? used_ : missing_).push_back({family.uid(), std::move(key)});
    }
}

UID DocumentFontUsage::uidAt(const std::vector<Entry>& list, int32 n) {
    return n >= 0 && n < static_cast<int32>(list.size()) ? list[n].family : kInvalidUID;
}

PMString DocumentFontUsage::faceAt(const std::vector<Entry>& list, int32 n) {
    return n >= 0 && n < static_cast<int32>(list.size()) ? PMString(list[n].key.style) : PMString();
}

} // namespace Galley
