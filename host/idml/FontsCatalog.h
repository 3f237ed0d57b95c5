#pragma once

#include "host/idml/XmlPart.h"
#include "sdk/IPMFont.h"

#include <string>
#include <vector>

namespace Galley {

// One face that Resources/Fonts.xml records.
struct CatalogFont {
    std::string family;
    std::string style;
    std::string postscriptName;
    IPMFont::FontType type = IPMFont::kUnknownFontType;
};

// Resources/Fonts.xml: what the application that wrote the document knew about its fonts.
class FontsCatalog {
public:
    static FontsCatalog parse(xmlDoc* doc);

    const std::vector<CatalogFont>& fonts() const { return fonts_; }
    // Null when the catalog does not record that face.
    const CatalogFont* find(const std::string& family, const std::string& style) const;

    // The whole part for the given faces, in the order given.
    static std::string write(const std::vector<CatalogFont>& fonts);

private:
    std::vector<CatalogFont> fonts_;
};

// IDML's FontType texts ("Type1", "OpenTypeCFF", ...) and the host's numbering.
IPMFont::FontType fontTypeFromIdml(const std::string& text);
std::string fontTypeToIdml(IPMFont::FontType type);

} // namespace Galley
