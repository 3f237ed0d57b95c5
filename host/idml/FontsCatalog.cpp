#include "host/idml/FontsCatalog.h"

#include "host/idml/XmlEscape.h"

#include <algorithm>
#include <array>
#include <utility>

namespace Galley {

namespace {

constexpr std::array<std::pair<const char*, IPMFont::FontType>, 8> kIdmlTypes{{
    {"Type1", IPMFont::kType1},
    {"TrueType", IPMFont::kTrueType},
    {"CID", IPMFont::kCID},
    {"Bitmap", IPMFont::kBitmap},
    {"OpenTypeCFF", IPMFont::kOpenTypeCFF},
    {"OpenTypeCID", IPMFont::kOpenTypeCID},
    {"OpenTypeTT", IPMFont::kOpenTypeTT},
    {"Unknown", IPMFont::kUnknownFontType},
}};

std::string faceKey(const std::string& family, const std::string& style) {
    return family + '\n' + style;
}

// Composite font entries name their faces with AppliedFont and FontStyle, as attributes or
// in Properties; an entry without a family is left out.
std::vector<FontKey> compositeFaces(const xmlNode* composite) {
    std::vector<FontKey> faces;
    for (const xmlNode* entry = composite->children; entry; entry = entry->next) {
        if (!isElement(entry, "CompositeFontEntry"))
            continue;
        auto family = property(entry, "AppliedFont");
        if (family && !family->empty())
            faces.push_back({*family, property(entry, "FontStyle").value_or("Regular")});
    }
    return faces;
}

void walk(const xmlNode* node, std::vector<CatalogFont>& out,
          std::unordered_map<std::string, std::vector<FontKey>>& composites) {
    for (const xmlNode* child = node->children; child; child = child->next) {
        if (child->type != XML_ELEMENT_NODE)
            continue;
        if (isElement(child, "Font")) {
            CatalogFont font;
            font.family = attribute(child, "FontFamily").value_or("");
            font.style = attribute(child, "FontStyleName").value_or("");
            font.postscriptName = attribute(child, "PostScriptName").value_or("");
            font.type = fontTypeFromIdml(attribute(child, "FontType").value_or(""));
            if (font.family.empty())
                font.family = attribute(node, "Name").value_or("");
            out.push_back(std::move(font));
        } else if (isElement(child, "CompositeFont")) {
            auto name = attribute(child, "Name");
            auto faces = compositeFaces(child);
            if (name && !faces.empty())
                composites.emplace(*name, std::move(faces));
        } else {
            walk(child, out, composites);
        }
    }
}

} // namespace

FontsCatalog FontsCatalog::parse(xmlDoc* doc) {
    FontsCatalog catalog;
    walk(xmlDocGetRootElement(doc), catalog.fonts_, catalog.composites_);
    for (std::size_t i = 0; i < catalog.fonts_.size(); ++i)
        catalog.index_.emplace(faceKey(catalog.fonts_[i].family, catalog.fonts_[i].style), i);
    return catalog;
}

const CatalogFont* FontsCatalog::find(const std::string& family, const std::string& style) const {
    auto found = index_.find(faceKey(family, style));
    return found == index_.end() ? nullptr : &fonts_[found->second];
}

const std::vector<FontKey>* FontsCatalog::composite(const std::string& name) const {
    auto found = composites_.find(name);
    return found == composites_.end() ? nullptr : &found->second;
}

std::string FontsCatalog::write(const std::vector<CatalogFont>& fonts,
                                const FontsCatalog* keepComposites) {
    std::string xml = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n"
                      "<idPkg:Fonts xmlns:idPkg=\"http://ns.adobe.com/AdobeInDesign/idml/1.0/"
                      "packaging\" DOMVersion=\"8.0\">\n";
    std::vector<std::string> families;
    std::unordered_map<std::string, std::vector<const CatalogFont*>> faces;
    for (const auto& font : fonts) {
        auto& list = faces[font.family];
        if (list.empty())
            families.push_back(font.family);
        list.push_back(&font);
    }
    for (std::size_t f = 0; f < families.size(); ++f) {
        std::string familyId = "dFontFamily" + std::to_string(f + 1);
        xml += "\t<FontFamily Self=\"" + familyId + "\" Name=\"" + xmlEscape(families[f]) + "\">\n";
        for (const CatalogFont* face : faces[families[f]]) {
            const CatalogFont& font = *face;
            xml += "\t\t<Font Self=\"" + familyId + "Font" + xmlEscape(font.style) +
                   "\" FontFamily=\"" + xmlEscape(font.family) + "\" Name=\"" +
                   xmlEscape(font.family + "\t" + font.style) + "\" PostScriptName=\"" +
                   xmlEscape(font.postscriptName) + "\" Status=\"Installed\" FontStyleName=\"" +
                   xmlEscape(font.style) + "\" FontType=\"" + fontTypeToIdml(font.type) + "\"/>\n";
        }
        xml += "\t</FontFamily>\n";
    }
    if (keepComposites)
        xml += keepComposites->writeComposites();
    xml += "</idPkg:Fonts>\n";
    return xml;
}

// The composite fonts with the faces they name; their other settings are not kept.
std::string FontsCatalog::writeComposites() const {
    std::vector<const std::string*> names;
    for (const auto& [name, faces] : composites_)
        names.push_back(&name);
    std::sort(names.begin(), names.end(), [](auto* a, auto* b) { return *a < *b; });
    std::string xml;
    for (std::size_t c = 0; c < names.size(); ++c) {
        std::string self = "dCompositeFont" + std::to_string(c + 1);
        xml += "\t<CompositeFont Self=\"" + self + "\" Name=\"" + xmlEscape(*names[c]) + "\">\n";
        const auto& faces = composites_.at(*names[c]);
        for (std::size_t e = 0; e < faces.size(); ++e)
            xml += "\t\t<CompositeFontEntry Self=\"" + self + "Entry" + std::to_string(e) +
                   "\" AppliedFont=\"" + xmlEscape(faces[e].family) + "\" FontStyle=\"" +
                   xmlEscape(faces[e].style) + "\"/>\n";
        xml += "\t</CompositeFont>\n";
    }
    return xml;
}

IPMFont::FontType fontTypeFromIdml(const std::string& text) {
    for (const auto& [name, type] : kIdmlTypes) {
        if (text == name)
            return type;
    }
    return IPMFont::kUnknownFontType;
}

std::string fontTypeToIdml(IPMFont::FontType type) {
    for (const auto& [name, known] : kIdmlTypes) {
        if (known == type)
            return name;
    }
    return "Unknown";
}

} // namespace Galley
