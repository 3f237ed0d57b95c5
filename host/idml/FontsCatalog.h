#pragma once

#include "host/idml/FontReference.h"
#include "host/idml/XmlPart.h"
#include "sdk/IPMFont.h"

#include <string>
#include <unordered_map>
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
// A composite font (CompositeFont) is a name for several faces, one per script; text set in
// it uses each of them.
class FontsCatalog {
public:
    static FontsCatalog parse(xmlDoc* doc);

    const std::vector<CatalogFont>& fonts() const { return fonts_; }
    // Null when the catalog does not record that face.
    const CatalogFont* find(const std::string& family, const std::string& style) const;
    // The faces of the composite font of that name, in the catalog's order; null when the
    // name is no composite font.
    const std::vector<FontKey>* composite(const std::string& name) const;

    // The whole part for the given faces, in the order given, and the composite fonts of
    // `keepComposites` when given.
    static std::string write(const std::vector<CatalogFont>& fonts,
                             const FontsCatalog* keepComposites = nullptr);

private:
    std::string writeComposites() const;

    std::vector<CatalogFont> fonts_;
    std::unordered_map<std::string, std::size_t> index_; // family + '\n' + style -> font
    std::unordered_map<std::string, std::vector<FontKey>> composites_;
};

// IDML's FontType texts ("Type1", "OpenTypeCFF", ...) and the host's numbering.
IPMFont::FontType fontTypeFromIdml(const std::string& text);
std::string fontTypeToIdml(IPMFont::FontType type);

} // namespace Galley
