#include "IdmlBuilder.h"

#include "host/idml/XmlEscape.h"

#include <zip.h>

#include <algorithm>
#include <cstdio>
#include <stdexcept>

namespace IdmlTestKit {

namespace {

const char* kPackagingNs = "xmlns:idPkg=\"http://ns.adobe.com/AdobeInDesign/idml/1.0/packaging\"";
const char* kHeader = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n";

std::string storyPartName(std::size_t index) {
    return "Stories/Story_u" + std::to_string(index + 1) + ".xml";
}

using Galley::xmlEscape;

std::string attr(const std::string& name, const std::string& value) {
    return " " + name + "=\"" + xmlEscape(value) + "\"";
}

// What exporting applications write beside the fonts, which a reader must step over.
const char* kStyleNoise = " Imported=\"false\" KeyboardShortcut=\"0 0\" PointSize=\"11\"";
const char* kStyleNoiseProperties =
    "<Leading type=\"unit\">14</Leading><TabList type=\"list\"></TabList>";
const char* kRangeNoise = " PointSize=\"11\" Tracking=\"0\"";
const char* kRangeNoiseProperties = "<Leading type=\"enumeration\">Auto</Leading>";

// Attributes of the opening tag, and the <Properties> child, for a formatting level.
// `basedOn` is written as given; `byName` marks it as a Name (a string) rather than a Self.
std::pair<std::string, std::string> fontMarkup(const FontAttrs& attrs, const std::string& basedOn,
                                               bool byName = false, bool noise = false) {
    std::string attributes, properties = noise ? kStyleNoiseProperties : "";
    if (attrs.inProperties) {
        if (attrs.font)
            properties +=
                "<AppliedFont type=\"string\">" + xmlEscape(*attrs.font) + "</AppliedFont>";
        if (attrs.style)
            properties += "<FontStyle type=\"string\">" + xmlEscape(*attrs.style) + "</FontStyle>";
    } else {
        if (attrs.font)
            attributes += attr("AppliedFont", *attrs.font);
        if (attrs.style)
            attributes += attr("FontStyle", *attrs.style);
    }
    if (!basedOn.empty())
        properties += std::string("<BasedOn type=\"") + (byName ? "string" : "object") + "\">" +
                      xmlEscape(basedOn) + "</BasedOn>";
    return {attributes, properties.empty() ? "" : "<Properties>" + properties + "</Properties>"};
}

std::string element(const std::string& name, const std::string& self, const std::string& label,
                    const FontAttrs& attrs, const std::string& basedOn, bool byName, bool noise) {
    auto [attributes, properties] = fontMarkup(attrs, basedOn, byName, noise);
    std::string open = "\t\t<" + name + attr("Self", self) + attr("Name", label) + attributes +
                       (noise ? kStyleNoise : "");
    return properties.empty() ? open + "/>\n" : open + ">" + properties + "</" + name + ">\n";
}

// The XML declaration and the opening of a part's root element, without its closing ">".
std::string partStart(const std::string& root, const DocumentDef& d) {
    return std::string(kHeader) + "<" + root + " " + kPackagingNs +
           attr("DOMVersion", d.domVersion);
}

std::string rootName(const std::string& kind) {
    return kind == "Paragraph" ? "$ID/[No paragraph style]" : "$ID/[No character style]";
}

// The group of each grouped style, by name.
using GroupOf = std::map<std::string, std::string>;

GroupOf groupsOf(const std::vector<StyleDef>& styles) {
    GroupOf groups;
    for (const auto& style : styles) {
        if (!style.group.empty())
            groups.emplace(style.name, style.group);
    }
    return groups;
}

// The Self of a style, "ParagraphStyle/Group%3aName" inside a group.
std::string styleSelf(const std::string& kind, const GroupOf& groups, const std::string& name) {
    if (name.empty())
        return kind + "Style/" + rootName(kind);
    auto group = groups.find(name);
    return kind + "Style/" + (group == groups.end() ? name : group->second + "%3a" + name);
}

// One kind's styles: the root first, then the styles of the root group, then each group.
std::string styleGroupXml(const std::string& kind, const FontAttrs& root,
                          const std::vector<StyleDef>& styles, const DocumentDef& d) {
    const GroupOf groupOf = groupsOf(styles);
    auto styleXml = [&](const StyleDef& s) {
        std::string parent;
        if (!s.basedOn.empty())
            parent = s.basedByName ? s.basedOn : styleSelf(kind, groupOf, s.basedOn);
        else if (kind == "Paragraph")
            parent = rootName(kind);
        return element(kind + "Style", styleSelf(kind, groupOf, s.name), s.name, s.attrs, parent,
                       s.basedByName, d.exported);
    };
    std::string xml = element(kind + "Style", kind + "Style/" + rootName(kind), rootName(kind),
                              root, "", false, d.exported);
    std::vector<std::string> groups;
    for (const auto& s : styles) {
        if (s.group.empty())
            xml += styleXml(s);
        else if (std::find(groups.begin(), groups.end(), s.group) == groups.end())
            groups.push_back(s.group);
    }
    for (const auto& group : groups) {
        xml += "\t\t<" + kind + "StyleGroup" + attr("Self", kind + "StyleGroup/" + group) +
               attr("Name", group) + ">\n";
        for (const auto& s : styles) {
            if (s.group == group)
                xml += "\t" + styleXml(s);
        }
        xml += "\t\t</" + kind + "StyleGroup>\n";
    }
    return xml;
}

std::string stylesXml(const DocumentDef& d) {
    return partStart("idPkg:Styles", d) + ">\n\t<RootCharacterStyleGroup Self=\"u79\">\n" +
           styleGroupXml("Character", d.rootCharacter, d.characterStyles, d) +
           "\t</RootCharacterStyleGroup>\n\t<RootParagraphStyleGroup Self=\"u78\">\n" +
           styleGroupXml("Paragraph", d.rootParagraph, d.paragraphStyles, d) +
           "\t</RootParagraphStyleGroup>\n</idPkg:Styles>\n";
}

std::string fontsXml(const DocumentDef& d) {
    std::string xml = partStart("idPkg:Fonts", d) + ">\n";
    for (std::size_t i = 0; i < d.fonts.size(); ++i) {
        const FontEntry& f = d.fonts[i];
        std::string self = "di" + std::to_string(100 + i);
        xml += "\t<FontFamily" + attr("Self", self) + attr("Name", f.family) + ">\n\t\t<Font" +
               attr("Self", self + "Font") + attr("FontFamily", f.family) +
               attr("Name", f.family + " " + f.style) +
               (f.postscriptName.empty()
                    ? std::string(" Status=\"NotAvailable\"")
                    : attr("PostScriptName", f.postscriptName) + " Status=\"Installed\"") +
               attr("FontStyleName", f.style) + attr("FontType", f.type) + "/>\n\t</FontFamily>\n";
    }
    for (std::size_t c = 0; c < d.composites.size(); ++c) {
        const CompositeDef& composite = d.composites[c];
        std::string self = "CompositeFont/c" + std::to_string(c + 1);
        xml += "\t<CompositeFont" + attr("Self", self) + attr("Name", composite.name) + ">\n";
        for (std::size_t e = 0; e < composite.faces.size(); ++e)
            xml += "\t\t<CompositeFontEntry" + attr("Self", self + "e" + std::to_string(e)) +
                   attr("Name", e ? "$ID/Alphabetic" : "$ID/Kanji") + " RelativeSize=\"100\"" +
                   attr("AppliedFont", composite.faces[e].first) +
                   attr("FontStyle", composite.faces[e].second) + "/>\n";
        xml += "\t</CompositeFont>\n";
    }
    return xml + "</idPkg:Fonts>\n";
}

// Every character outside ASCII, and '&', as a numeric character reference.
std::string withReferences(const std::string& text) {
    std::string xml;
    for (std::size_t i = 0; i < text.size();) {
        unsigned char lead = static_cast<unsigned char>(text[i]);
        std::size_t length = lead < 0x80 ? 1 : lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
        if (length == 1 && lead != '&') {
            xml += xmlEscape(std::string(1, text[i]));
        } else {
            unsigned long code = length == 1 ? lead : lead & (0x7F >> length);
            for (std::size_t k = 1; k < length; ++k)
                code = (code << 6) | (static_cast<unsigned char>(text[i + k]) & 0x3F);
            char reference[16];
            std::snprintf(reference, sizeof reference, "&#x%lX;", code);
            xml += reference;
        }
        i += length;
    }
    return xml;
}

// Text as <Content> elements, with <Br/> for each line break.
std::string content(const std::string& text, bool references) {
    std::string xml;
    for (std::size_t from = 0, end; from <= text.size(); from = end + 1) {
        end = std::min(text.find('\n', from), text.size());
        std::string piece = text.substr(from, end - from);
        if (end > from)
            xml += "<Content>" + (references ? withReferences(piece) : xmlEscape(piece)) +
                   "</Content>";
        if (end < text.size())
            xml += "<Br/>";
    }
    return xml;
}

// The opening tag of a Paragraph or Character style range, and its <Properties>.
std::string rangeStart(const std::string& kind, const std::string& style, const FontAttrs& attrs,
                       const DocumentDef& d) {
    auto [attributes, properties] = fontMarkup(attrs, "");
    if (d.exported)
        properties =
            properties.empty()
                ? std::string("<Properties>") + kRangeNoiseProperties + "</Properties>"
                : "<Properties>" + std::string(kRangeNoiseProperties) + properties.substr(12);
    const auto& styles = kind == "Paragraph" ? d.paragraphStyles : d.characterStyles;
    return "<" + kind + "StyleRange" +
           attr("Applied" + kind + "Style", styleSelf(kind, groupsOf(styles), style)) + attributes +
           (d.exported ? kRangeNoise : "") + ">" + properties;
}

// The run's text inside the elements that wrap it, outermost first.
std::string wrapped(const std::vector<std::string>& wrappers, std::string text) {
    static int number = 0;
    for (auto kind = wrappers.rbegin(); kind != wrappers.rend(); ++kind) {
        const std::string self = attr("Self", "w" + std::to_string(++number));
        if (*kind == "xml")
            text =
                "<XMLElement" + self + " MarkupTag=\"XMLTag/Subtitle\">" + text + "</XMLElement>";
        else if (*kind == "link")
            text = "<HyperlinkTextSource" + self + " Name=\"Link\" Hidden=\"false\">" + text +
                   "</HyperlinkTextSource>";
        else if (*kind == "change")
            text = "<Change" + self + " ChangeType=\"InsertedText\" UserName=\"Editor\">" + text +
                   "</Change>";
        else
            throw std::invalid_argument("unknown wrapper \"" + *kind + "\"");
    }
    return text;
}

std::string runXml(const RunDef& r, const DocumentDef& d) {
    std::string special =
        r.specialCharacter >= 0 ? "<?ACE " + std::to_string(r.specialCharacter) + "?>" : "";
    return rangeStart("Character", r.characterStyle, r.attrs, d) + special +
           wrapped(r.wrappers, content(r.text, r.characterReferences)) + "</CharacterStyleRange>";
}

// A run in a container: a range of the paragraph holding the container, which holds a
// paragraph of its own with the run.
std::string containedRunXml(const RunDef& r, const DocumentDef& d, std::size_t number) {
    const std::string id = std::to_string(number);
    std::string inner = rangeStart("Paragraph", r.innerParagraphStyle, {}, d) + runXml(r, d) +
                        "</ParagraphStyleRange>";
    std::string holder;
    switch (r.container) {
    case Container::Table:
        holder =
            "<Table Self=\"tb" + id + "\" BodyRowCount=\"1\" ColumnCount=\"1\"><Row Self=\"tb" +
            id + "r0\" Name=\"0\"/><Column Self=\"tb" + id + "c0\" Name=\"0\"/><Cell Self=\"tb" +
            id + "i0\" Name=\"0:0\" RowSpan=\"1\" ColumnSpan=\"1\">" + inner + "</Cell></Table>";
        break;
    case Container::Footnote:
        holder = "<Footnote Self=\"fn" + id + "\">" + inner + "</Footnote>";
        break;
    case Container::Note:
        holder = "<Note Self=\"n" + id + "\" Collapsed=\"false\">" + inner + "</Note>";
        break;
    case Container::Anchored:
        holder = "<TextFrame Self=\"tf" + id + "\"" +
                 attr("ParentStory", "u" + std::to_string(r.anchoredStory + 1)) +
                 " ContentType=\"TextType\"><Properties><PathGeometry/></Properties>"
                 "<AnchoredObjectSetting AnchoredPosition=\"InlinePosition\"/></TextFrame>";
        break;
    case Container::None:
        break;
    }
    return rangeStart("Character", "", {}, d) + holder + "</CharacterStyleRange>";
}

std::string storyXml(const DocumentDef& d, const StoryDef& story, std::size_t index) {
    std::string xml = partStart("idPkg:Story", d) + ">\n";
    if (d.exported)
        xml += "\t<?aid story=\"exported\"?>\n";
    xml += "\t<Story" + attr("Self", "u" + std::to_string(index + 1)) + ">\n";
    if (d.exported)
        xml += "\t\t<StoryPreference OpticalMarginAlignment=\"false\"/>\n"
               "\t\t<InCopyExportOption IncludeGraphicProxies=\"true\"/>\n";
    std::size_t containers = 0;
    for (const auto& p : story.paragraphs) {
        std::string paragraph = rangeStart("Paragraph", p.paragraphStyle, p.attrs, d) + "\n";
        for (const auto& r : p.runs)
            paragraph += "\t\t\t" +
                         (r.container == Container::None
                              ? runXml(r, d)
                              : containedRunXml(r, d, index * 1000 + ++containers)) +
                         "\n";
        paragraph += "\t\t</ParagraphStyleRange>";
        if (p.inXmlElement)
            paragraph = "<XMLElement Self=\"x" + std::to_string(index) +
                        "\" MarkupTag=\"XMLTag/Story\">" + paragraph + "</XMLElement>";
        xml += "\t\t" + paragraph + "\n";
    }
    return xml + "\t</Story>\n</idPkg:Story>\n";
}

// The stories to write: the document's, then one for each anchored frame's text.
std::vector<StoryDef> allStories(const DocumentDef& d) {
    std::vector<StoryDef> stories = d.stories;
    for (std::size_t s = 0; s < d.stories.size(); ++s) {
        for (auto& p : stories[s].paragraphs) {
            for (auto& r : p.runs) {
                if (r.container != Container::Anchored)
                    continue;
                RunDef text = r;
                text.container = Container::None;
                r.anchoredStory = static_cast<int>(stories.size());
                stories.push_back({{ParagraphDef{r.innerParagraphStyle, {}, {text}, false}}});
            }
        }
    }
    return stories;
}

std::string designMapXml(const DocumentDef& d, std::size_t stories) {
    std::string xml = std::string(kHeader) +
                      "<?aid style=\"50\" type=\"document\" readerVersion=\"6.0\" "
                      "featureSet=\"257\"?>\n<Document " +
                      kPackagingNs + attr("DOMVersion", d.domVersion) + " Self=\"d\">\n";
    xml += "\t<idPkg:Fonts src=\"Resources/Fonts.xml\"/>\n\t<idPkg:Styles "
           "src=\"Resources/Styles.xml\"/>\n";
    for (std::size_t i = 0; i < stories; ++i)
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
    const std::vector<StoryDef> stories = allStories(d);
    std::vector<std::pair<std::string, std::string>> parts{
        {"mimetype", "application/vnd.adobe.indesign-idml-package"},
        {"designmap.xml", designMapXml(d, stories.size())},
        {"Resources/Fonts.xml", fontsXml(d)},
        {"Resources/Styles.xml", stylesXml(d)},
    };
    for (std::size_t i = 0; i < stories.size(); ++i)
        parts.emplace_back(storyPartName(i), storyXml(d, stories[i], i));
    for (const auto& replaced : d.replacedParts) {
        auto part = std::find_if(parts.begin(), parts.end(),
                                 [&](auto& p) { return p.first == replaced.first; });
        if (part == parts.end())
            parts.push_back(replaced);
        else
            part->second = replaced.second;
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
