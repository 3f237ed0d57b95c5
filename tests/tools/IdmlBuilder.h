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
};

struct StyleDef {
    std::string name;
    std::string basedOn; // a style name of the same kind; empty for none
    FontAttrs attrs;
};

struct RunDef {
    std::string characterStyle; // empty: [No character style]
    FontAttrs attrs;
    std::string text; // "\n" becomes <Br/>
};

struct ParagraphDef {
    std::string paragraphStyle; // empty: [No paragraph style]
    FontAttrs attrs;
    std::vector<RunDef> runs;
};

struct StoryDef {
    std::vector<ParagraphDef> paragraphs;
};

struct DocumentDef {
    std::string domVersion = "8.0";
    std::vector<FontEntry> fonts;
    std::vector<StyleDef> paragraphStyles;
    std::vector<StyleDef> characterStyles;
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
