#pragma once

#include "host/idml/FontReference.h"
#include "host/idml/XmlPart.h"

#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace Galley {

enum class StyleKind { Paragraph, Character };

// Documents have hundreds of styles, rarely a few thousand.
inline constexpr std::size_t kMaxStyles = 20000;

struct TextStyle {
    StyleKind kind = StyleKind::Paragraph;
    std::string self; // "ParagraphStyle/Body"
    std::string name;
    std::string basedOn;    // the parent as written: its Self or its Name; empty for none
    bool root = false;      // "[No paragraph style]" or "[No character style]"
    FontReference own;      // what the style itself sets
    FontReference resolved; // own, then the BasedOn chain's (for paragraph styles, the root's)

    // The name as applications show it, without the "$ID/" of built-in names.
    std::string title() const { return name.starts_with("$ID/") ? name.substr(4) : name; }
};

// Resources/Styles.xml: paragraph and character styles with their BasedOn inheritance.
//
// A style refers to another (BasedOn, or a range's applied style) by its Self or by its
// Name, with or without the "$ID/" prefix, as exporting applications write both. The root
// styles "[No paragraph style]" and "[No character style]" carry the document's defaults:
// every paragraph style inherits the paragraph root's, and the character root's apply
// where neither the text nor any style names a font.
class StyleSheet {
public:
    // Throws IdmlError naming `file` and `part` for a BasedOn cycle or an unknown parent.
    // The sheet keeps the part's tree, so that styles can be redefined and the part saved.
    static StyleSheet parse(const std::string& file, const std::string& part, XmlDocPtr doc);

    // The style `reference` names (its Self, or else its Name); null when there is none.
    const TextStyle* find(StyleKind kind, const std::string& reference) const;
    // In the order Styles.xml lists them.
    const std::vector<TextStyle>& styles() const { return styles_; }
    // The style at `index` inherits from: its BasedOn parent, the paragraph root for a
    // paragraph style without one; none for the roots.
    std::optional<std::size_t> parentOf(std::size_t index) const;
    // What the root styles set: the paragraph root first, then the character root.
    const FontReference& documentDefaults() const { return defaults_; }

    // Styles every document has even when Styles.xml leaves them out.
    static bool isBuiltInEmptyStyle(const std::string& self);

    // Redefines each style (by its index in styles()) to name that family and face itself,
    // then resolves every style again.
    void setOwnFonts(const std::vector<std::pair<std::size_t, FontKey>>& fonts);
    bool modified() const { return modified_; }
    // Counts the changes, so that what was resolved through the styles can tell it is stale.
    unsigned revision() const { return revision_; }
    void markSaved() { modified_ = false; }
    // The part as it now stands; only meaningful for a sheet read from a part.
    std::string serialize() const;

private:
    using Key = std::pair<StyleKind, std::string>;
    struct KeyHash {
        std::size_t operator()(const Key& key) const {
            return std::hash<std::string>()(key.second) * 2 + (key.first == StyleKind::Character);
        }
    };

    void index();
    std::optional<std::size_t> lookup(StyleKind kind, const std::string& reference) const;
    void resolveAll(const std::string& file, const std::string& part);
    void resolve(std::size_t index, std::vector<int>& state, const std::string& file,
                 const std::string& part);

    std::string file_;
    std::string part_;
    XmlDocPtr doc_;
    std::vector<xmlNode*> elements_; // the element of each style, in the order of styles_
    std::vector<std::optional<std::size_t>> parents_;
    bool modified_ = false;
    unsigned revision_ = 0;
    std::vector<TextStyle> styles_;
    std::unordered_map<Key, std::size_t, KeyHash> bySelf_;
    std::unordered_map<Key, std::size_t, KeyHash> byName_; // without "$ID/"; first one wins
    std::optional<std::size_t> paragraphRoot_, characterRoot_;
    FontReference defaults_;
};

} // namespace Galley
