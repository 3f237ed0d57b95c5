#include "host/document/FontResolver.h"

#include "host/idml/FontsCatalog.h"
#include "host/fonts/SessionFontMgr.h"

#include <cctype>

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

namespace {

bool hasBlank(const std::string& text) {
    return text.find_first_of(" \t\n\r\f\v") != std::string::npos;
}

std::string withoutBlanks(const std::string& text) {
    std::string kept;
    for (char c : text) {
        if (!std::isspace(static_cast<unsigned char>(c)))
            kept += c;
    }
    return kept;
}

} // namespace

std::string FontResolver::identity(const FontKey& key) const {
    std::string name = postscriptName(key);
    if (!name.empty() && !hasBlank(name))
        return name;
    std::string family = withoutBlanks(key.family);
    std::string style = withoutBlanks(key.style);
    if (family.empty())
        return style.empty() ? "-" : style;
    return style.empty() ? family : family + "-" + style;
}

IPMFont::FontType FontResolver::type(const FontKey& key) const {
    if (InstalledFont* font = installed(key))
        return font->face().type;
    const CatalogFont* recorded = catalog_.find(key.family, key.style);
    return recorded ? recorded->type : IPMFont::kUnknownFontType;
}

} // namespace Galley
