#include "host/fonts/InstalledFont.h"

namespace Galley {

PMString InstalledFamily::GetFaceName(int32 index) const {
    if (index < 0 || index >= GetNumFaces())
        return PMString();
    return faces_[index]->GetStyleName();
}

PMString InstalledFamily::GetFacePostScriptName(const PMString& faceName) const {
    IPMFont* face = QueryFace(faceName);
    return face ? face->GetPostScriptName() : PMString();
}

IPMFont::FontType InstalledFamily::GetFaceFontType(const PMString& faceName) const {
    IPMFont* face = QueryFace(faceName);
    return face ? face->GetFontType() : IPMFont::kUnknownFontType;
}

IPMFont* InstalledFamily::QueryFace(const PMString& faceName) const {
    for (InstalledFont* face : faces_) {
        if (face->GetStyleName() == faceName)
            return face;
    }
    return nullptr;
}

} // namespace Galley
