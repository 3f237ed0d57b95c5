#include "host/document/FontResolver.h"

#include "host/idml/FontsCatalog.h"
#include "host/session/SessionFontMgr.h"

namespace Galley {

InstalledFont* FontResolver::installed(const FontKey& key) const {
    const CatalogFont* recorded = catalog_.find(key.family, key.style);
    if (recorded && !recorded->postscriptName.empty())
        return fonts_.findByPostScriptName(recorded->postscriptName, recorded->type);
    return fonts_.findByFamilyAndStyle(key.family, key.style,
                                       recorded ? recorded->type : IPMFont::kUnknownFontType);
}

std::string FontResolver::postscriptName(const FontKey& key) const {
    if (InstalledFont* font = installed(key))
        return font->face().postscriptName;
    const CatalogFont* recorded = catalog_.find(key.family, key.style);
    return recorded ? recorded->postscriptName : std::string();
}

IPMFont::FontType FontResolver::type(const FontKey& key) const {
    if (InstalledFont* font = installed(key))
        return font->face().type;
    const CatalogFont* recorded = catalog_.find(key.family, key.style);
    return recorded ? recorded->type : IPMFont::kUnknownFontType;
}

} // namespace Galley
