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
    static StyleSheet parse(const std::string& file, const std::string& part, xmlDoc* doc);

    // The style `reference` names (its Self, or else its Name); null when there is none.
    const TextStyle* find(StyleKind kind, const std::string& reference) const;
    // In the order Styles.xml lists them.
    const std::vector<TextStyle>& styles() const { return styles_; }
    // What the root styles set: the paragraph root first, then the character root.
    const FontReference& documentDefaults() const { return defaults_; }

    // Styles every document has even when Styles.xml leaves them out.
    static bool isBuiltInEmptyStyle(const std::string& self);

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

    std::vector<TextStyle> styles_;
    std::unordered_map<Key, std::size_t, KeyHash> bySelf_;
    std::unordered_map<Key, std::size_t, KeyHash> byName_; // without "$ID/"; first one wins
    std::optional<std::size_t> paragraphRoot_, characterRoot_;
    FontReference defaults_;
};

} // namespace Galley
