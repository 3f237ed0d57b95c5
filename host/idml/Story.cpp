#include "host/idml/Story.h"

#include "host/idml/IdmlError.h"
#include "host/idml/StyleSheet.h"

#include <cstring>

namespace Galley {

namespace {

const xmlChar* xml(const char* text) {
    return reinterpret_cast<const xmlChar*>(text);
}

int codePoints(const std::string& utf8) {
    int count = 0;
    for (unsigned char c : utf8)
        count += (c & 0xC0) != 0x80;
    return count;
}

// Byte offset of code point `index` in `utf8`.
std::size_t byteOffset(const std::string& utf8, int index) {
    std::size_t i = 0;
    for (int seen = -1; i < utf8.size(); ++i) {
        if ((static_cast<unsigned char>(utf8[i]) & 0xC0) != 0x80 && ++seen == index)
            return i;
    }
    return utf8.size();
}

bool isSpecialCharacter(const xmlNode* node) {
    return node->type == XML_PI_NODE &&
           std::strcmp(reinterpret_cast<const char*>(node->name), "ACE") == 0;
}

// A range nested in another (in a table cell, a footnote or a note) holds text of its own,
// which forms runs of its own.
bool isRange(const xmlNode* node) {
    return isElement(node, "ParagraphStyleRange") || isElement(node, "CharacterStyleRange");
}

// An element between a range and its text: an XML tag, a hyperlink source, a tracked change
// and the like. Exporting applications wrap tagged text this way, so a range's characters
// are found at any depth below it, except inside nested ranges and the range's Properties.
bool isTextWrapper(const xmlNode* node) {
    return node->type == XML_ELEMENT_NODE && !isRange(node) && !isElement(node, "Properties") &&
           !isElement(node, "Content") && !isElement(node, "Br");
}

int characterCount(const xmlNode* node) {
    if (isElement(node, "Content"))
        return codePoints(textContent(node));
    if (isElement(node, "Br") || isSpecialCharacter(node))
        return 1;
    int count = 0;
    if (isTextWrapper(node)) {
        for (const xmlNode* child = node->children; child; child = child->next)
            count += characterCount(child);
    }
    return count;
}

// The characters `characterCount` counts, as text: a line break for Br, and a space for a
// special character (a page number, a tab and the like, which only layout would fill in).
std::string characters(const xmlNode* node) {
    if (isElement(node, "Content"))
        return textContent(node);
    if (isElement(node, "Br"))
        return "\n";
    if (isSpecialCharacter(node))
        return " ";
    std::string text;
    if (isTextWrapper(node)) {
        for (const xmlNode* child = node->children; child; child = child->next)
            text += characters(child);
    }
    return text;
}

} // namespace

Story::Story(const std::string& file, std::string part, const std::string& data,
             const StyleSheet& styles)
    : Story(file, part, parseXmlPart(file, part, data), styles) {}

Story::Story(const std::string& file, std::string part, XmlDocPtr doc, const StyleSheet& styles)
    : file_(file), part_(std::move(part)), styles_(&styles), doc_(std::move(doc)) {
    rebuildRuns();
}

void Story::rebuildRuns() {
    runs_.clear();
    length_ = 0;
    collectRuns(xmlDocGetRootElement(doc_.get()), std::make_shared<ParagraphFormat>());
}

Story::Paragraph Story::readParagraph(const xmlNode* range) const {
    auto paragraph = std::make_shared<ParagraphFormat>();
    paragraph->style = attribute(range, "AppliedParagraphStyle").value_or("");
    paragraph->local = readLocalFont(range);
    checkStyle(StyleKind::Paragraph, paragraph->style);
    return paragraph;
}

FontReference Story::readLocalFont(const xmlNode* range) const {
    FontReference font{property(range, "AppliedFont"), property(range, "FontStyle")};
    checkNameLength(file_, part_, font.family);
    checkNameLength(file_, part_, font.style);
    return font;
}

void Story::checkStyle(StyleKind kind, const std::string& reference) const {
    checkNameLength(file_, part_, reference);
    if (styles_->find(kind, reference) || StyleSheet::isBuiltInEmptyStyle(reference))
        return;
    throw IdmlError(file_, part_,
                    std::string("text uses ") +
                        (kind == StyleKind::Paragraph ? "paragraph" : "character") + " style \"" +
                        reference + "\", which the document lacks");
}

// A paragraph's style and attributes are read once, however many ranges it holds.
void Story::collectRuns(xmlNode* node, const Paragraph& paragraph) {
    for (xmlNode* child = node->children; child; child = child->next) {
        if (child->type != XML_ELEMENT_NODE)
            continue;
        if (isElement(child, "ParagraphStyleRange")) {
            collectRuns(child, readParagraph(child));
            continue;
        }
        if (!isElement(child, "CharacterStyleRange")) {
            collectRuns(child, paragraph);
            continue;
        }
        StoryRun run;
        run.range = child;
        run.start = length_;
        for (const xmlNode* item = child->children; item; item = item->next)
            run.length += characterCount(item);
        run.paragraph = paragraph;
        run.characterStyle = attribute(child, "AppliedCharacterStyle").value_or("");
        run.characterLocal = readLocalFont(child);
        checkStyle(StyleKind::Character, run.characterStyle);
        length_ += run.length;
        if (run.length > 0)
            runs_.push_back(std::move(run));
        collectRuns(child, paragraph); // nested stories of tables and notes
    }
}

const StoryRun* Story::runAround(int position) const {
    for (const StoryRun& run : runs_) {
        if (position > run.start && position < run.start + run.length)
            return &run;
    }
    return nullptr;
}

// A cut inside an element that wraps part of a range's text (an XML tag, a hyperlink source)
// would have to duplicate that element and its Self, which other parts may refer to; such a
// range is left whole.
bool Story::canSplitAt(int position) const {
    const StoryRun* run = runAround(position);
    if (!run)
        return true;
    const int cut = position - run->start;
    int offset = 0;
    for (const xmlNode* item = run->range->children; item; item = item->next) {
        const int count = characterCount(item);
        if (offset < cut && cut < offset + count && isTextWrapper(item))
            return false;
        offset += count;
    }
    return true;
}

// Splits the range that holds `position` so that a range starts there.
void Story::splitAt(int position) {
    const StoryRun* run = runAround(position);
    if (!run)
        return;
    xmlNode* first = run->range;
    xmlNode* second = xmlDocCopyNode(first, doc_.get(), 2);
    if (const xmlNode* properties = firstChildElement(first, "Properties"))
        xmlAddChild(second, xmlDocCopyNode(const_cast<xmlNode*>(properties), doc_.get(), 1));
    const int cut = position - run->start;
    int offset = 0;
    for (xmlNode* item = first->children; item;) {
        xmlNode* next = item->next;
        const int count = characterCount(item);
        if (isElement(item, "Properties")) {
            // stays with the first half; the second has its copy
        } else if (offset >= cut) {
            xmlUnlinkNode(item);
            xmlAddChild(second, item);
        } else if (offset + count > cut) {
            std::string text = textContent(item);
            std::size_t at = byteOffset(text, cut - offset);
            setTextContent(item, text.substr(0, at));
            xmlNode* rest = xmlNewDocNode(doc_.get(), item->ns, xml("Content"), nullptr);
            setTextContent(rest, text.substr(at));
            xmlAddChild(second, rest);
        }
        offset += count;
        item = next;
    }
    xmlAddNextSibling(first, second);
    rebuildRuns();
}

bool Story::applyLocalFont(int start, int length, const FontReference& font) {
    if (start < 0 || length <= 0 || start + length > length_ || !canSplitAt(start) ||
        !canSplitAt(start + length))
        return false;
    splitAt(start);
    splitAt(start + length);
    for (const StoryRun& run : runs_) {
        if (run.start < start || run.start + run.length > start + length)
            continue;
        if (font.family)
            setProperty(run.range, "AppliedFont", *font.family);
        if (font.style)
            setProperty(run.range, "FontStyle", *font.style);
    }
    rebuildRuns();
    modified_ = true;
    ++revision_;
    return true;
}

void Story::applyLocalFonts(const std::vector<std::pair<std::size_t, FontKey>>& fonts) {
    if (fonts.empty())
        return;
    for (const auto& [index, font] : fonts) {
        setProperty(runs_.at(index).range, "AppliedFont", font.family);
        setProperty(runs_.at(index).range, "FontStyle", font.style);
    }
    rebuildRuns();
    modified_ = true;
    ++revision_;
}

std::string Story::text(const StoryRun& run) {
    std::string text;
    for (const xmlNode* item = run.range ? run.range->children : nullptr; item; item = item->next)
        text += characters(item);
    return text;
}

} // namespace Galley
