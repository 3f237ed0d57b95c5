#include "IdmlBuilder.h"

#include <zip.h>

#include <algorithm>
#include <stdexcept>

namespace IdmlTestKit {

namespace {

const char* kPackagingNs = "xmlns:idPkg=\"http://ns.adobe.com/AdobeInDesign/idml/1.0/packaging\"";
const char* kHeader = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n";

std::string storyPartName(std::size_t index) {
    return "Stories/Story_u" + std::to_string(index + 1) + ".xml";
}

std::string escape(const std::string& text) {
    static const std::map<char, std::string> entities{
        {'&', "&amp;"}, {'<', "&lt;"}, {'>', "&gt;"}, {'"', "&quot;"}};
    std::string out;
    for (char c : text) {
        auto entity = entities.find(c);
        out += entity == entities.end() ? std::string(1, c) : entity->second;
    }
    return out;
}

std::string attr(const std::string& name, const std::string& value) {
    return " " + name + "=\"" + escape(value) + "\"";
}

// Attributes of the opening tag, and the <Properties> child, for a formatting level.
std::pair<std::string, std::string> fontMarkup(const FontAttrs& attrs, const std::string& basedOn) {
    std::string attributes, properties;
    if (attrs.inProperties) {
        if (attrs.font)
            properties += "<AppliedFont type=\"string\">" + escape(*attrs.font) + "</AppliedFont>";
        if (attrs.style)
            properties += "<FontStyle type=\"string\">" + escape(*attrs.style) + "</FontStyle>";
    } else {
        if (attrs.font)
            attributes += attr("AppliedFont", *attrs.font);
        if (attrs.style)
            attributes += attr("FontStyle", *attrs.style);
    }
    if (!basedOn.empty())
        properties += "<BasedOn type=\"object\">" + escape(basedOn) + "</BasedOn>";
    return {attributes, properties.empty() ? "" : "<Properties>" + properties + "</Properties>"};
}

std::string element(const std::string& name, const std::string& self, const std::string& label,
                    const FontAttrs& attrs, const std::string& basedOn) {
    auto [attributes, properties] = fontMarkup(attrs, basedOn);
    std::string open = "\t\t<" + name + attr("Self", self) + attr("Name", label) + attributes;
    return properties.empty() ? open + "/>\n" : open + ">" + properties + "</" + name + ">\n";
}

// The XML declaration and the opening of a part's root element, without its closing ">".
std::string partStart(const std::string& root, const DocumentDef& d) {
    return std::string(kHeader) + "<" + root + " " + kPackagingNs +
           attr("DOMVersion", d.domVersion);
}

std::string stylesXml(const DocumentDef& d) {
    std::string xml =
        partStart("idPkg:Styles", d) + ">\n\t<RootCharacterStyleGroup Self=\"u79\">\n";
    xml += "\t\t<CharacterStyle Self=\"CharacterStyle/$ID/[No character style]\" Name=\"$ID/[No "
           "character style]\"/>\n";
    for (const auto& s : d.characterStyles)
        xml += element("CharacterStyle", "CharacterStyle/" + s.name, s.name, s.attrs,
                       s.basedOn.empty() ? "" : "CharacterStyle/" + s.basedOn);
    xml += "\t</RootCharacterStyleGroup>\n\t<RootParagraphStyleGroup Self=\"u78\">\n";
    xml += "\t\t<ParagraphStyle Self=\"ParagraphStyle/$ID/[No paragraph style]\" Name=\"$ID/[No "
           "paragraph style]\"/>\n";
    for (const auto& s : d.paragraphStyles)
        xml +=
            element("ParagraphStyle", "ParagraphStyle/" + s.name, s.name, s.attrs,
                    s.basedOn.empty() ? "$ID/[No paragraph style]" : "ParagraphStyle/" + s.basedOn);
    return xml + "\t</RootParagraphStyleGroup>\n</idPkg:Styles>\n";
}

std::string fontsXml(const DocumentDef& d) {
    std::string xml = partStart("idPkg:Fonts", d) + ">\n";
    for (std::size_t i = 0; i < d.fonts.size(); ++i) {
        const FontEntry& f = d.fonts[i];
        std::string self = "di" + std::to_string(100 + i);
        xml += "\t<FontFamily" + attr("Self", self) + attr("Name", f.family) + ">\n\t\t<Font" +
               attr("Self", self + "Font") + attr("FontFamily", f.family) +
               attr("Name", f.family + " " + f.style) + attr("PostScriptName", f.postscriptName) +
               " Status=\"Installed\"" + attr("FontStyleName", f.style) + attr("FontType", f.type) +
               "/>\n\t</FontFamily>\n";
    }
    return xml + "</idPkg:Fonts>\n";
}

// Text as <Content> elements, with <Br/> for each line break.
std::string content(const std::string& text) {
    std::string xml;
    for (std::size_t from = 0, end; from <= text.size(); from = end + 1) {
        end = std::min(text.find('\n', from), text.size());
        if (end > from)
            xml += "<Content>" + escape(text.substr(from, end - from)) + "</Content>";
        if (end < text.size())
            xml += "<Br/>";
    }
    return xml;
}

// The opening tag of a Paragraph or Character style range, and its <Properties>.
std::string rangeStart(const std::string& kind, const std::string& style, const FontAttrs& attrs) {
    auto [attributes, properties] = fontMarkup(attrs, "");
    std::string none =
        kind == "Paragraph" ? "$ID/[No paragraph style]" : "$ID/[No character style]";
    return "<" + kind + "StyleRange" +
           attr("Applied" + kind + "Style", kind + "Style/" + (style.empty() ? none : style)) +
           attributes + ">" + properties;
}

std::string storyXml(const DocumentDef& d, std::size_t index) {
    std::string xml = partStart("idPkg:Story", d) + ">\n\t<Story" +
                      attr("Self", "u" + std::to_string(index + 1)) + ">\n";
    for (const auto& p : d.stories[index].paragraphs) {
        xml += "\t\t" + rangeStart("Paragraph", p.paragraphStyle, p.attrs) + "\n";
        for (const auto& r : p.runs)
            xml += "\t\t\t" + rangeStart("Character", r.characterStyle, r.attrs) + content(r.text) +
                   "</CharacterStyleRange>\n";
        xml += "\t\t</ParagraphStyleRange>\n";
    }
    return xml + "\t</Story>\n</idPkg:Story>\n";
}

std::string designMapXml(const DocumentDef& d) {
    std::string xml = std::string(kHeader) +
                      "<?aid style=\"50\" type=\"document\" readerVersion=\"6.0\" "
                      "featureSet=\"257\"?>\n<Document " +
                      kPackagingNs + attr("DOMVersion", d.domVersion) + " Self=\"d\">\n";
    xml += "\t<idPkg:Fonts src=\"Resources/Fonts.xml\"/>\n\t<idPkg:Styles "
           "src=\"Resources/Styles.xml\"/>\n";
    for (std::size_t i = 0; i < d.stories.size(); ++i)
        xml += "\t<idPkg:Story src=\"" + storyPartName(i) + "\"/>\n";
    return xml + "</Document>\n";
}

// `data` must live until the archive is closed: libzip reads it only then.
void addPart(zip_t* archive, const std::string& name, const std::string& data) {
    zip_source_t* source = zip_source_buffer(archive, data.data(), data.size(), 0);
    zip_int64_t index =
        zip_file_add(archive, name.c_str(), source, ZIP_FL_ENC_UTF_8 | ZIP_FL_OVERWRITE);
    if (index < 0)
        throw std::runtime_error("cannot add " + name + ": " + zip_strerror(archive));
    zip_set_file_compression(archive, index, name == "mimetype" ? ZIP_CM_STORE : ZIP_CM_DEFLATE, 0);
    zip_file_set_mtime(archive, index, 1577836800, 0); // fixed, so that output is reproducible
}

} // namespace

void writeIdml(const DocumentDef& d, const std::string& path) {
    std::vector<std::pair<std::string, std::string>> parts{
        {"mimetype", "application/vnd.adobe.indesign-idml-package"},
        {"designmap.xml", designMapXml(d)},
        {"Resources/Fonts.xml", fontsXml(d)},
        {"Resources/Styles.xml", stylesXml(d)},
    };
    for (std::size_t i = 0; i < d.stories.size(); ++i)
        parts.emplace_back(storyPartName(i), storyXml(d, i));
    for (const auto& [name, data] : d.replacedParts) {
        auto part =
            std::find_if(parts.begin(), parts.end(), [&](auto& p) { return p.first == name; });
        if (part == parts.end())
            parts.emplace_back(name, data);
        else
            part->second = data;
    }
    zip_t* archive = zip_open(path.c_str(), ZIP_CREATE | ZIP_TRUNCATE, nullptr);
    if (!archive)
        throw std::runtime_error("cannot create " + path);
    for (const auto& [name, data] : parts)
        if (!d.omittedParts.count(name))
            addPart(archive, name, data);
    if (zip_close(archive) != 0) {
        std::string reason = zip_strerror(archive);
        zip_discard(archive);
        throw std::runtime_error("cannot write " + path + ": " + reason);
    }
}

} // namespace IdmlTestKit
