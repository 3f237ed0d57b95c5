#pragma once

#include "host/idml/FontReference.h"
#include "host/idml/StyleSheet.h"
#include "host/idml/XmlPart.h"

#include <memory>
#include <string>
#include <vector>

namespace Galley {

// The formatting of one ParagraphStyleRange, shared by all the runs in it.
struct ParagraphFormat {
    std::string style;   // the applied paragraph style as written
    FontReference local; // set on the ParagraphStyleRange
};

// A stretch of a story's text in one CharacterStyleRange, with the formatting that applies
// to it at each level.
struct StoryRun {
    xmlNode* range = nullptr; // the CharacterStyleRange element
    int start = 0;            // in characters from the story's start
    int length = 0;
    std::shared_ptr<const ParagraphFormat> paragraph; // never null
    std::string characterStyle;                       // the applied character style as written
    FontReference characterLocal;                     // set on the CharacterStyleRange
};

// One Stories/*.xml part. Characters are counted as code points of <Content>, plus one for
// each <Br/> and each special-character instruction; empty ranges form no run. Ranges are
// found at any depth: inside XML elements, table cells, notes and footnotes, each nested
// ParagraphStyleRange starting its own paragraph. A range's text is found at any depth below
// it too (tagged text in an XMLElement, a hyperlink's source), except in nested ranges.
class Story {
public:
    // Throws IdmlError naming `file` and `part` for malformed XML or a style the sheet lacks.
    Story(const std::string& file, std::string part, const std::string& data,
          const StyleSheet& styles);
    // A story over a part already parsed.
    Story(const std::string& file, std::string part, XmlDocPtr doc, const StyleSheet& styles);

    const std::string& part() const { return part_; }
    const std::vector<StoryRun>& runs() const { return runs_; }
    int length() const { return length_; }
    bool modified() const { return modified_; }
    // The run's characters, as many as its length counts.
    static std::string text(const StoryRun& run);
    void markSaved() { modified_ = false; }
    // Changes with every edit, so that views of the runs know when to rebuild.
    unsigned revision() const { return revision_; }
    std::string serialize() const { return serializeXmlPart(doc_.get()); }

    // Sets a local family and/or face on [start, start + length), splitting ranges at the
    // ends. Returns false, changing nothing, when the range lies outside the text or an end
    // falls inside an element wrapping part of a range's text.
    bool applyLocalFont(int start, int length, const FontReference& font);
    // Sets a local family and face on whole runs (by their index in runs()), at once.
    void applyLocalFonts(const std::vector<std::pair<std::size_t, FontKey>>& fonts);

private:
    void rebuildRuns();
    using Paragraph = std::shared_ptr<const ParagraphFormat>;
    Paragraph readParagraph(const xmlNode* range) const;
    FontReference readLocalFont(const xmlNode* range) const;
    void collectRuns(xmlNode* node, const Paragraph& paragraph);
    void checkStyle(StyleKind kind, const std::string& reference) const;
    const StoryRun* runAround(int position) const;
    bool canSplitAt(int position) const;
    void splitAt(int position);

    std::string file_;
    std::string part_;
    const StyleSheet* styles_ = nullptr;
    XmlDocPtr doc_;
    std::vector<StoryRun> runs_;
    int length_ = 0;
    bool modified_ = false;
    unsigned revision_ = 0;
};

} // namespace Galley
