#include "HostileIdml.h"

#include "IdmlBuilder.h"

#include <cstring>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace IdmlTestKit {

namespace {

const std::string kStoryPart = "Stories/Story_u1.xml";
const char* kStoryStart = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<idPkg:Story "
                          "xmlns:idPkg=\"http://ns.adobe.com/AdobeInDesign/idml/1.0/packaging\">"
                          "<Story Self=\"u1\">";
const char* kStoryEnd = "</Story></idPkg:Story>\n";

std::string repeat(const std::string& text, std::size_t times) {
    std::string out;
    out.reserve(text.size() * times);
    for (std::size_t i = 0; i < times; ++i)
        out += text;
    return out;
}

std::string story(const std::string& body) {
    return kStoryStart + body + kStoryEnd;
}

std::string paragraphOf(const std::string& ranges) {
    return "<ParagraphStyleRange AppliedParagraphStyle=\"ParagraphStyle/$ID/[No paragraph "
           "style]\">" +
           ranges + "</ParagraphStyleRange>";
}

// A document of `stories` stories, each replaced by `content`.
DocumentDef withStories(std::size_t stories, const std::string& content) {
    DocumentDef d = parseDescription(repeat("story\npara\nrun text=x\n", stories));
    for (std::size_t s = 0; s < stories; ++s)
        d.replacedParts["Stories/Story_u" + std::to_string(s + 1) + ".xml"] = content;
    return d;
}

// Nested entities that grow a thousandfold per level, referenced from an attribute.
std::string entityBomb() {
    std::string dtd = "<!ENTITY e0 \"" + std::string(10, 'a') + "\">";
    for (int level = 1; level <= 6; ++level)
        dtd += "<!ENTITY e" + std::to_string(level) + " \"" +
               repeat("&e" + std::to_string(level - 1) + ";", 10) + "\">";
    return "<?xml version=\"1.0\"?>\n<!DOCTYPE idPkg:Styles [" + dtd +
           "]>\n<idPkg:Styles><RootParagraphStyleGroup><ParagraphStyle Self=\"P\" "
           "AppliedFont=\"" +
           repeat("&e6;", 100) + "\"/></RootParagraphStyleGroup></idPkg:Styles>\n";
}

// One paragraph of `count` character ranges, each in a font of its own when `distinct`.
DocumentDef manyRanges(std::size_t count, bool distinct) {
    DocumentDef d = parseDescription("story\npara\n");
    auto& runs = d.stories[0].paragraphs[0].runs;
    for (std::size_t i = 0; i < count; ++i) {
        std::string family = distinct ? "Family " + std::to_string(i) : "Family";
        if (distinct)
            d.fonts.push_back({family, "Regular", "Family" + std::to_string(i) + "-Regular",
                               "OpenTypeCFF"});
        RunDef run;
        run.attrs = {family, std::string("Regular"), i % 2 == 0};
        run.text = "r";
        runs.push_back(run);
    }
    return d;
}

void write(const DocumentDef& d, const std::string& path) {
    writeIdml(d, path);
}

} // namespace

std::vector<HostileCase> hostileCases() {
    using D = DocumentDef;
    return {
        {"element-bomb", kStoryPart, "XML nodes",
         [](const std::string& p) { write(withStories(1, story(repeat("<a/>", 3000000))), p); }},
        {"attribute-bomb", kStoryPart, "attributes",
         [](const std::string& p) {
             std::string attributes;
             for (int i = 0; i < 100000; ++i)
                 attributes += " a" + std::to_string(i) + "=\"\"";
             write(withStories(1, story("<a" + attributes + "/>")), p);
         }},
        {"entity-bomb", "Resources/Styles.xml", "document type declarations",
         [](const std::string& p) {
             D d = parseDescription("story\n");
             d.replacedParts["Resources/Styles.xml"] = entityBomb();
             write(d, p);
         }},
        {"external-entity", "designmap.xml", "document type declarations",
         [](const std::string& p) {
             D d = parseDescription("story\n");
             d.replacedParts["designmap.xml"] =
                 "<?xml version=\"1.0\"?>\n<!DOCTYPE Document [<!ENTITY x SYSTEM "
                 "\"file:///etc/passwd\">]>\n<Document DOMVersion=\"&x;\"/>\n";
             write(d, p);
         }},
        {"undeclared-entity", kStoryPart, "malformed XML",
         [](const std::string& p) {
             write(withStories(1, story(paragraphOf("<CharacterStyleRange><Content>&x;"
                                                    "</Content></CharacterStyleRange>"))),
                   p);
         }},
        {"nodes-across-stories", "Stories/Story_u4.xml", "package holds more than",
         [](const std::string& p) { write(withStories(4, story(repeat("<a/>", 300000))), p); }},
        {"bytes-across-stories", "Stories/Story_u3.xml", "too large when uncompressed",
         [](const std::string& p) {
             // libxml2 refuses a single text or comment of over 10 MB by itself.
             std::string comment = "<!--" + std::string(1u << 20, 'x') + "-->";
             write(withStories(3, story(repeat(comment, 25))), p);
         }},
        {"large-part", kStoryPart, "part is too large",
         [](const std::string& p) {
             write(withStories(1, story("<!--" + std::string(40u << 20, 'x') + "-->")), p);
         }},
        {"crc-mismatch", "Resources/Styles.xml", "CRC",
         [](const std::string& p) {
             write(parseDescription("pstyle Body font=F\nstory\npara pstyle=Body\nrun text=t\n"),
                   p);
             corruptCrc(p, "Resources/Styles.xml");
         }},
        {"long-name", "Resources/Styles.xml", "longer than",
         [](const std::string& p) {
             // One family name of megabytes, inherited by thousands of styles.
             D d = parseDescription("story\n");
             d.paragraphStyles.push_back({"Base", "", {std::string(8u << 20, 'F'), {}, true}});
             for (int i = 0; i < 5000; ++i)
                 d.paragraphStyles.push_back({"S" + std::to_string(i), "Base", {}});
             write(d, p);
         }},
        {"many-styles", "Resources/Styles.xml", "styles",
         [](const std::string& p) {
             D d = parseDescription("story\n");
             for (int i = 0; i < 30000; ++i)
                 d.paragraphStyles.push_back({"S" + std::to_string(i), i ? "S0" : "", {}});
             write(d, p);
         }},
        {"story-listed-often", "", "",
         [](const std::string& p) {
             D d = parseDescription("story\npara\nrun text=t\n");
             d.replacedParts["designmap.xml"] =
                 "<?xml version=\"1.0\"?>\n<Document xmlns:idPkg=\"http://ns.adobe.com/"
                 "AdobeInDesign/idml/1.0/packaging\" DOMVersion=\"8.0\">" +
                 repeat("<idPkg:Story src=\"" + kStoryPart + "\"/>", 100000) + "</Document>\n";
             write(d, p);
         }},
        {"unread-large-part", "", "",
         [](const std::string& p) {
             D d = parseDescription("story\npara\nrun text=t\n");
             d.replacedParts["Spreads/Spread_u1.xml"] = std::string(33u << 20, ' ');
             write(d, p);
         }},
        {"many-ranges", "", "", [](const std::string& p) { write(manyRanges(40000, false), p); }},
        {"many-fonts", "", "", [](const std::string& p) { write(manyRanges(20000, true), p); }},
    };
}

void corruptCrc(const std::string& path, const std::string& part) {
    std::stringstream buffer;
    buffer << std::ifstream(path, std::ios::binary).rdbuf();
    std::string zip = buffer.str();
    // Local headers keep the CRC 14 bytes and the name 30 bytes in; central headers 16 and 46.
    int changed = 0;
    for (auto [signature, crcAt, nameAt] :
         {std::tuple{std::string("PK\3\4"), 14u, 30u}, {std::string("PK\1\2"), 16u, 46u}}) {
        for (std::size_t at = zip.find(signature); at != std::string::npos;
             at = zip.find(signature, at + 1)) {
            if (zip.compare(at + nameAt, part.size(), part) == 0) {
                zip[at + crcAt] = static_cast<char>(zip[at + crcAt] ^ 0x5A);
                ++changed;
            }
        }
    }
    if (changed != 2)
        throw std::runtime_error("cannot find " + part + " in " + path);
    std::ofstream(path, std::ios::binary | std::ios::trunc) << zip;
}

} // namespace IdmlTestKit
