#include "host/idml/StyleSheet.h"

#include "host/idml/IdmlError.h"

namespace Galley {

namespace {

enum ResolveState { kUnvisited = 0, kVisiting = 1, kDone = 2 };

constexpr std::string_view kIdPrefix = "$ID/";

std::string_view withoutIdPrefix(std::string_view name) {
    return name.starts_with(kIdPrefix) ? name.substr(kIdPrefix.size()) : name;
}

const char* kindPrefix(StyleKind kind) {
    return kind == StyleKind::Paragraph ? "ParagraphStyle/" : "CharacterStyle/";
}

bool isRootName(StyleKind kind, std::string_view name) {
    return withoutIdPrefix(name) ==
           (kind == StyleKind::Paragraph ? "[No paragraph style]" : "[No character style]");
}

void collect(xmlNode* node, std::vector<TextStyle>& out, std::vector<xmlNode*>& elements) {
    for (xmlNode* child = node->children; child; child = child->next) {
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
            std::string_view self = style.self;
            if (self.starts_with(kindPrefix(style.kind)))
                self.remove_prefix(std::string_view(kindPrefix(style.kind)).size());
            style.root = isRootName(style.kind, style.name) || isRootName(style.kind, self);
            out.push_back(std::move(style));
            elements.push_back(child);
        } else if (!isElement(child, "Properties")) {
            collect(child, out, elements); // style groups
        }
    }
}

} // namespace

bool StyleSheet::isBuiltInEmptyStyle(const std::string& self) {
    // "$ID/[No paragraph style]", "CharacterStyle/$ID/[No character style]" and the like.
    return self.empty() || self.find("[No ") != std::string::npos;
}

StyleSheet StyleSheet::parse(const std::string& file, const std::string& part, XmlDocPtr doc) {
    StyleSheet sheet;
    sheet.file_ = file;
    sheet.part_ = part;
    sheet.doc_ = std::move(doc);
    collect(xmlDocGetRootElement(sheet.doc_.get()), sheet.styles_, sheet.elements_);
    // Each style holds what it inherits, so their number bounds what the names cost.
    if (sheet.styles_.size() > kMaxStyles)
        throw IdmlError(file, part, "more than " + std::to_string(kMaxStyles) + " styles");
    for (const TextStyle& style : sheet.styles_) {
        for (const auto& name : {std::optional(style.self), std::optional(style.name),
                                 std::optional(style.basedOn), style.own.family, style.own.style})
            checkNameLength(file, part, name);
    }
    sheet.index();
    sheet.resolveAll(file, part);
    return sheet;
}

void StyleSheet::index() {
    for (std::size_t i = 0; i < styles_.size(); ++i) {
        const TextStyle& style = styles_[i];
        bySelf_.emplace(Key{style.kind, style.self}, i);
        byName_.emplace(Key{style.kind, std::string(withoutIdPrefix(style.name))}, i);
        auto& root = style.kind == StyleKind::Paragraph ? paragraphRoot_ : characterRoot_;
        if (style.root && !root)
            root = i;
    }
}

// Self first, then Self with the kind's prefix that a bare reference leaves out, then Name.
std::optional<std::size_t> StyleSheet::lookup(StyleKind kind, const std::string& reference) const {
    if (reference.empty())
        return std::nullopt;
    for (const std::string& self : {reference, kindPrefix(kind) + reference}) {
        if (auto found = bySelf_.find({kind, self}); found != bySelf_.end())
            return found->second;
    }
    if (auto found = byName_.find({kind, std::string(withoutIdPrefix(reference))});
        found != byName_.end())
        return found->second;
    if (isBuiltInEmptyStyle(reference))
        return kind == StyleKind::Paragraph ? paragraphRoot_ : characterRoot_;
    return std::nullopt;
}

const TextStyle* StyleSheet::find(StyleKind kind, const std::string& reference) const {
    auto found = lookup(kind, reference);
    return found ? &styles_[*found] : nullptr;
}

void StyleSheet::setOwnFonts(const std::vector<std::pair<std::size_t, FontKey>>& fonts) {
    if (fonts.empty())
        return;
    for (const auto& [index, font] : fonts) {
        setProperty(elements_.at(index), "AppliedFont", font.family);
        setProperty(elements_.at(index), "FontStyle", font.style);
        styles_[index].own = {font.family, font.style};
    }
    defaults_ = {};
    resolveAll(file_, part_);
    modified_ = true;
    ++revision_;
}

std::string StyleSheet::serialize() const {
    return doc_ ? serializeXmlPart(doc_.get()) : std::string();
}

std::optional<std::size_t> StyleSheet::parentOf(std::size_t index) const {
    return index < parents_.size() ? parents_[index] : std::nullopt;
}

void StyleSheet::resolveAll(const std::string& file, const std::string& part) {
    std::vector<int> state(styles_.size(), kUnvisited);
    parents_.assign(styles_.size(), std::nullopt);
    // The roots first: the other paragraph styles end their chains in the root's values.
    for (auto root : {paragraphRoot_, characterRoot_}) {
        if (root)
            resolve(*root, state, file, part);
    }
    for (std::size_t i = 0; i < styles_.size(); ++i)
        resolve(i, state, file, part);
    for (auto root : {paragraphRoot_, characterRoot_}) {
        if (root)
            defaults_.inheritFrom(styles_[*root].resolved);
    }
}

// Walks the BasedOn chain iteratively, so that a chain of any length needs no stack depth.
void StyleSheet::resolve(std::size_t start, std::vector<int>& state, const std::string& file,
                         const std::string& part) {
    std::vector<std::size_t> chain;
    std::vector<std::optional<std::size_t>> parents;
    std::size_t current = start;
    while (state[current] == kUnvisited) {
        state[current] = kVisiting;
        chain.push_back(current);
        const TextStyle& style = styles_[current];
        auto parent = style.root ? std::nullopt : lookup(style.kind, style.basedOn);
        if (!parent && !style.root && !isBuiltInEmptyStyle(style.basedOn))
            throw IdmlError(file, part,
                            "style \"" + style.name + "\" is based on \"" + style.basedOn +
                                "\", which the document lacks");
        parents.push_back(parent);
        if (!parent)
            break;
        current = *parent;
        if (state[current] == kVisiting)
            throw IdmlError(file, part,
                            "BasedOn cycle through style \"" + styles_[current].name + "\"");
    }
    for (std::size_t i = chain.size(); i-- > 0;) {
        TextStyle& style = styles_[chain[i]];
        style.resolved = style.own;
        // The character root's values are the weakest of all, below the paragraph's; a
        // character style based on it inherits nothing from it.
        if (parents[i] == characterRoot_ && style.kind == StyleKind::Character)
            parents[i].reset();
        if (!parents[i] && style.kind == StyleKind::Paragraph && !style.root)
            parents[i] = paragraphRoot_;
        if (parents[i])
            style.resolved.inheritFrom(styles_[*parents[i]].resolved);
        parents_[chain[i]] = parents[i];
        state[chain[i]] = kDone;
    }
}

} // namespace Galley
