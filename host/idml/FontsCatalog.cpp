#include "host/idml/FontsCatalog.h"

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

void walk(const xmlNode* node, std::vector<CatalogFont>& out) {
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
        } else {
            walk(child, out);
        }
    }
}

std::string escape(const std::string& text) {
    std::string out;
    for (char c : text) {
        switch (c) {
        case '&':
            out += "&amp;";
            break;
        case '<':
            out += "&lt;";
            break;
        case '>':
            out += "&gt;";
            break;
        case '"':
            out += "&quot;";
            break;
        case '\t':
            out += "&#9;";
            break;
        default:
            out += c;
        }
    }
    return out;
}

} // namespace

FontsCatalog FontsCatalog::parse(xmlDoc* doc) {
    FontsCatalog catalog;
    walk(xmlDocGetRootElement(doc), catalog.fonts_);
    return catalog;
}

const CatalogFont* FontsCatalog::find(const std::string& family, const std::string& style) const {
    for (const auto& font : fonts_) {
        if (font.family == family && font.style == style)
            return &font;
    }
    return nullptr;
}

std::string FontsCatalog::write(const std::vector<CatalogFont>& fonts) {
    std::string xml = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n"
                      "<idPkg:Fonts xmlns:idPkg=\"http://ns.adobe.com/AdobeInDesign/idml/1.0/"
                      "packaging\" DOMVersion=\"8.0\">\n";
    std::vector<std::string> families;
    for (const auto& font : fonts) {
        bool seen = false;
        for (const auto& family : families)
            seen = seen || family == font.family;
        if (!seen)
            families.push_back(font.family);
    }
    for (std::size_t f = 0; f < families.size(); ++f) {
        std::string familyId = "dFontFamily" + std::to_string(f + 1);
        xml += "\t<FontFamily Self=\"" + familyId + "\" Name=\"" + escape(families[f]) + "\">\n";
        for (const auto& font : fonts) {
            if (font.family != families[f])
                continue;
            xml += "\t\t<Font Self=\"" + familyId + "Font" + escape(font.style) +
                   "\" FontFamily=\"" + escape(font.family) + "\" Name=\"" +
                   escape(font.family + "\t" + font.style) + "\" PostScriptName=\"" +
                   escape(font.postscriptName) + "\" Status=\"Installed\" FontStyleName=\"" +
                   escape(font.style) + "\" FontType=\"" + fontTypeToIdml(font.type) + "\"/>\n";
        }
        xml += "\t</FontFamily>\n";
    }
    xml += "</idPkg:Fonts>\n";
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
