#include "host/idml/StyleSheet.h"

#include "host/idml/IdmlError.h"

namespace Galley {

namespace {

enum ResolveState { kUnvisited = 0, kVisiting = 1, kDone = 2 };

void collect(const xmlNode* node, std::vector<TextStyle>& out) {
    for (const xmlNode* child = node->children; child; child = child->next) {
        if (child->type != XML_ELEMENT_NODE)
            continue;
        bool paragraph = isElement(child, "ParagraphStyle");
        if (paragraph || isElement(child, "CharacterStyle")) {
            TextStyle style;
            style.kind = paragraph ? StyleKind::Paragraph : StyleKind::Character;
            style.self = attribute(child, "Self").value_or("");
            style.name = attribute(child, "Name").value_or(style.self);
            style.basedOn = property(child, "BasedOn").value_or("");
            style.own.family = property(child, "AppliedFont");
            style.own.style = property(child, "FontStyle");
            out.push_back(std::move(style));
        } else if (!isElement(child, "Properties")) {
            collect(child, out); // style groups
        }
    }
}

} // namespace

bool StyleSheet::isBuiltInEmptyStyle(const std::string& self) {
    // "$ID/[No paragraph style]", "CharacterStyle/$ID/[No character style]" and the like.
    return self.empty() || self.find("$ID/[No ") != std::string::npos;
}

StyleSheet StyleSheet::parse(const std::string& file, const std::string& part, xmlDoc* doc) {
    StyleSheet sheet;
    collect(xmlDocGetRootElement(doc), sheet.styles_);
    for (std::size_t i = 0; i < sheet.styles_.size(); ++i)
        sheet.index_.emplace(std::make_pair(sheet.styles_[i].kind, sheet.styles_[i].self), i);
    sheet.resolveAll(file, part);
    return sheet;
}

const TextStyle* StyleSheet::find(StyleKind kind, const std::string& self) const {
    auto found = index_.find({kind, self});
    return found == index_.end() ? nullptr : &styles_[found->second];
}

void StyleSheet::resolveAll(const std::string& file, const std::string& part) {
    std::vector<int> state(styles_.size(), kUnvisited);
    for (std::size_t i = 0; i < styles_.size(); ++i)
        resolve(i, state, file, part);
}

// Walks the BasedOn chain iteratively, so that a chain of any length needs no stack depth.
const FontReference& StyleSheet::resolve(std::size_t start, std::vector<int>& state,
                                         const std::string& file, const std::string& part) {
    std::vector<std::size_t> chain;
    std::size_t current = start;
    while (state[current] == kUnvisited) {
        state[current] = kVisiting;
        chain.push_back(current);
        const TextStyle& style = styles_[current];
        auto parent = index_.find({style.kind, style.basedOn});
        if (parent == index_.end()) {
            if (!isBuiltInEmptyStyle(style.basedOn))
                throw IdmlError(file, part,
                                "style \"" + style.name + "\" is based on \"" + style.basedOn +
                                    "\", which the document lacks");
            break;
        }
        current = parent->second;
        if (state[current] == kVisiting)
            throw IdmlError(file, part,
                            "BasedOn cycle through style \"" + styles_[current].name + "\"");
    }
    for (auto it = chain.rbegin(); it != chain.rend(); ++it) {
        TextStyle& style = styles_[*it];
        style.resolved = style.own;
        auto parent = index_.find({style.kind, style.basedOn});
        if (parent != index_.end())
            style.resolved.inheritFrom(styles_[parent->second].resolved);
        state[*it] = kDone;
    }
    return styles_[start].resolved;
}

} // namespace Galley
