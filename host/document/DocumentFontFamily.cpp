#include "host/document/DocumentFontFamily.h"

#include "host/document/FontResolver.h"
#include "host/fonts/InstalledFont.h"

namespace Galley {

void DocumentFontFamily::GetHostFamilyName(PMString& name) const {
    for (const std::string& face : faces_) {
        if (InstalledFont* font = resolver_.installed({name_, face})) {
            name = PMString(font->face().family());
            return;
        }
    }
    name = PMString(name_);
}

PMString DocumentFontFamily::GetFaceName(int32 index) const {
    if (index < 0 || index >= GetNumFaces())
        return PMString();
    return PMString(faces_[index]);
}

PMString DocumentFontFamily::GetFacePostScriptName(const PMString& faceName) const {
    return PMString(resolver_.identity({name_, faceName.GetUTF8String()}));
}

IPMFont::FontType DocumentFontFamily::GetFaceFontType(const PMString& faceName) const {
    return resolver_.type({name_, faceName.GetUTF8String()});
}

IPMFont* DocumentFontFamily::QueryFace(const PMString& faceName) const {
    return resolver_.installed({name_, faceName.GetUTF8String()});
}

void DocumentFontFamily::addFace(const std::string& face) {
    if (known_.insert(face).second)
        faces_.push_back(face);
}

} // namespace Galley
