#pragma once

#include "host/idml/FontReference.h"
#include "host/idml/XmlPart.h"

#include <map>
#include <string>
#include <vector>

namespace Galley {

enum class StyleKind { Paragraph, Character };

struct TextStyle {
    StyleKind kind = StyleKind::Paragraph;
    std::string self; // "ParagraphStyle/Body"
    std::string name;
    std::string basedOn;    // self of the parent; empty for none
    FontReference own;      // what the style itself sets
    FontReference resolved; // own, then the BasedOn chain's
};

// Resources/Styles.xml: paragraph and character styles with their BasedOn inheritance.
class StyleSheet {
public:
    // Throws IdmlError naming `file` and `part` for a BasedOn cycle or an unknown parent.
    static StyleSheet parse(const std::string& file, const std::string& part, xmlDoc* doc);

    // Null when the document has no such style.
    const TextStyle* find(StyleKind kind, const std::string& self) const;
    // In the order Styles.xml lists them.
    const std::vector<TextStyle>& styles() const { return styles_; }

    // Styles every document has even when Styles.xml leaves them out.
    static bool isBuiltInEmptyStyle(const std::string& self);

private:
    void resolveAll(const std::string& file, const std::string& part);
    const FontReference& resolve(std::size_t index, std::vector<int>& state,
                                 const std::string& file, const std::string& part);

    std::vector<TextStyle> styles_;
    std::map<std::pair<StyleKind, std::string>, std::size_t> index_;
};

} // namespace Galley
