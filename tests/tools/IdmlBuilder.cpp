#include "IdmlBuilder.h"

#include <zip.h>

#include <cstdlib>
#include <cstring>
#include <sstream>
#include <stdexcept>

namespace IdmlTestKit {

namespace {

const char* kPackagingNs = "xmlns:idPkg=\"http://ns.adobe.com/AdobeInDesign/idml/1.0/packaging\"";
const char* kHeader = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n";

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
        default:
            out += c;
        }
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

std::string stylesXml(const DocumentDef& d) {
    std::string xml = std::string(kHeader) + "<idPkg:Styles " + kPackagingNs +
                      attr("DOMVersion", d.domVersion) + ">\n";
    xml += "\t<RootCharacterStyleGroup Self=\"u79\">\n";
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
    std::string xml = std::string(kHeader) + "<idPkg:Fonts " + kPackagingNs +
                      attr("DOMVersion", d.domVersion) + ">\n";
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

std::string content(const std::string& text) {
    std::string xml, pending;
    auto flush = [&] {
        if (!pending.empty())
            xml += "<Content>" + escape(pending) + "</Content>";
        pending.clear();
    };
    for (char c : text) {
        if (c == '\n') {
            flush();
            xml += "<Br/>";
        } else {
            pending += c;
        }
    }
    flush();
    return xml;
}

std::string storyXml(const DocumentDef& d, std::size_t index) {
    const std::string id = "u" + std::to_string(index + 1);
    std::string xml = std::string(kHeader) + "<idPkg:Story " + kPackagingNs +
                      attr("DOMVersion", d.domVersion) + ">\n\t<Story" + attr("Self", id) + ">\n";
    for (const auto& p : d.stories[index].paragraphs) {
        auto [pAttrs, pProps] = fontMarkup(p.attrs, "");
        xml += "\t\t<ParagraphStyleRange" +
               attr("AppliedParagraphStyle",
                    "ParagraphStyle/" + (p.paragraphStyle.empty() ? "$ID/[No paragraph style]"
                                                                  : p.paragraphStyle)) +
               pAttrs + ">" + pProps + "\n";
        for (const auto& r : p.runs) {
            auto [rAttrs, rProps] = fontMarkup(r.attrs, "");
            xml += "\t\t\t<CharacterStyleRange" +
                   attr("AppliedCharacterStyle",
                        "CharacterStyle/" + (r.characterStyle.empty() ? "$ID/[No character style]"
                                                                      : r.characterStyle)) +
                   rAttrs + ">" + rProps + content(r.text) + "</CharacterStyleRange>\n";
        }
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

void addPart(zip_t* archive, const std::string& name, const std::string& data, bool store) {
    // The buffer is copied by libzip only at close, so keep it alive through a heap copy
    // that the source frees.
    void* copy = std::malloc(data.size() ? data.size() : 1);
    std::memcpy(copy, data.data(), data.size());
    zip_source_t* source = zip_source_buffer(archive, copy, data.size(), 1);
    zip_int64_t index =
        zip_file_add(archive, name.c_str(), source, ZIP_FL_ENC_UTF_8 | ZIP_FL_OVERWRITE);
    if (index < 0)
        throw std::runtime_error("cannot add " + name + ": " + zip_strerror(archive));
    zip_set_file_compression(archive, index, store ? ZIP_CM_STORE : ZIP_CM_DEFLATE, 0);
    zip_file_set_mtime(archive, index, 1577836800, 0); // fixed, so that output is reproducible
}

} // namespace

std::string storyPartName(std::size_t index) {
    return "Stories/Story_u" + std::to_string(index + 1) + ".xml";
}

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
        bool replaced = false;
        for (auto& part : parts) {
            if (part.first == name) {
                part.second = data;
                replaced = true;
            }
        }
        if (!replaced)
            parts.emplace_back(name, data);
    }
    int code = 0;
    zip_t* archive = zip_open(path.c_str(), ZIP_CREATE | ZIP_TRUNCATE, &code);
    if (!archive)
        throw std::runtime_error("cannot create " + path);
    for (const auto& [name, data] : parts) {
        if (!d.omittedParts.count(name))
            addPart(archive, name, data, name == "mimetype");
    }
    if (zip_close(archive) != 0) {
        std::string reason = zip_strerror(archive);
        zip_discard(archive);
        throw std::runtime_error("cannot write " + path + ": " + reason);
    }
}

} // namespace IdmlTestKit
