#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

// Writes small IDML packages from short descriptions, for tests, benchmarks and the
// sample documents.
namespace IdmlTestKit {

// Font attributes of one formatting level; `inProperties` writes them as children of
// <Properties> instead of as attributes.
struct FontAttrs {
    std::optional<std::string> font;  // AppliedFont
    std::optional<std::string> style; // FontStyle
    bool inProperties = false;
};

struct FontEntry {
    std::string family, style, postscriptName, type; // type as IDML writes it ("Type1", ...)
    // An empty PostScript name writes the entry as exports write a font that was missing
    // where they were made: no PostScriptName, Status "NotAvailable".
};

struct StyleDef {
    std::string name;
    std::string basedOn; // a style name of the same kind; empty for none
    FontAttrs attrs;
    std::string group = {};   // the style group holding it; empty for the root group
    bool basedByName = false; // BasedOn gives the parent's Name instead of its Self
};

// Where a run's text sits: directly in its paragraph, or in a one-paragraph story nested
// inside a range of the paragraph (a table cell, a footnote, a note) or in an anchored text
// frame, whose text is a story part of its own.
enum class Container { None, Table, Footnote, Note, Anchored };

struct RunDef {
    std::string characterStyle; // empty: [No character style]
    FontAttrs attrs;
    std::string text; // "\n" becomes <Br/>
    Container container = Container::None;
    std::string innerParagraphStyle = {}; // of the nested paragraph
    int specialCharacter = -1;            // writes <?ACE n?> before the text when >= 0
    bool characterReferences = false;     // non-ASCII text and '&' as numeric references
    int anchoredStory = -1;               // set by the writer
    // Elements between the range and its text, outermost first, as exports of tagged layouts
    // write them: "xml" (XMLElement), "link" (HyperlinkTextSource), "change" (Change).
    std::vector<std::string> wrappers = {};
};

struct ParagraphDef {
    std::string paragraphStyle; // empty: [No paragraph style]
    FontAttrs attrs;
    std::vector<RunDef> runs;
    bool inXmlElement = false; // wrapped in a tagged <XMLElement>
};

struct CompositeDef {
    std::string name;
    std::vector<std::pair<std::string, std::string>> faces; // family, style
};

struct StoryDef {
    std::vector<ParagraphDef> paragraphs;
};

struct DocumentDef {
    std::string domVersion = "8.0";
    std::vector<FontEntry> fonts;
    std::vector<CompositeDef> composites;
    FontAttrs rootParagraph; // what [No paragraph style] sets
    FontAttrs rootCharacter; // what [No character style] sets
    std::vector<StyleDef> paragraphStyles;
    std::vector<StyleDef> characterStyles;
    // Writes as desktop-publishing applications export: styles and ranges carry many other
    // attributes and Properties, stories other elements and processing instructions.
    bool exported = false;
    std::vector<StoryDef> stories;
    std::map<std::string, std::string> replacedParts; // part name -> raw content
    std::set<std::string> omittedParts;
};

// Writes the package; throws std::runtime_error when the file cannot be written.
void writeIdml(const DocumentDef& document, const std::string& path);

// Reads the description language (see tests/data/README.md). Throws std::runtime_error
// with the line number on a syntax error.
DocumentDef parseDescription(const std::string& text);

} // namespace IdmlTestKit
