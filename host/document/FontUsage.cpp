#include "host/document/FontUsage.h"

#include "host/idml/FontsCatalog.h"
#include "host/idml/Story.h"
#include "host/idml/StyleSheet.h"

#include <stdexcept>
#include <unordered_set>

namespace Galley {

namespace {

// Text in "[No character style]" takes nothing from that style at the character level: its
// values are the document's defaults, weaker than the paragraph's.
FontReference styleFont(const StyleSheet& styles, StyleKind kind, const std::string& self) {
    const TextStyle* style = styles.find(kind, self);
    if (!style || (style->root && kind == StyleKind::Character))
        return {};
    return style->resolved;
}

FontKey complete(FontReference font, const StyleSheet& styles) {
    font.inheritFrom(styles.documentDefaults());
    font.inheritFrom({std::string(kDefaultFontFamily), std::string(kDefaultFontStyle)});
    return {*font.family, *font.style};
}

// The faces in first-seen order, each once.
class FaceList {
public:
    explicit FaceList(const FontsCatalog& catalog) : catalog_(catalog) {}

    void add(FontKey key) {
        if (const auto* faces = catalog_.composite(key.family)) {
            for (const FontKey& face : *faces)
                addFace(face);
        } else {
            addFace(std::move(key));
        }
    }
    std::vector<FontKey> take() { return std::move(keys_); }

private:
    void addFace(FontKey key) {
        if (!seen_.insert(key.family + '\n' + key.style).second)
            return;
        if (keys_.size() == kMaxDistinctFaces)
            throw std::length_error("the document uses more than " +
                                    std::to_string(kMaxDistinctFaces) + " distinct faces");
        keys_.push_back(std::move(key));
    }

    const FontsCatalog& catalog_;
    std::unordered_set<std::string> seen_;
    std::vector<FontKey> keys_;
};

} // namespace

std::optional<FontKey> namedFace(const TextStyle& style, const StyleSheet& styles) {
    // A character style that sets only a face names no font of its own.
    const bool names = style.kind == StyleKind::Paragraph ? !style.resolved.empty()
                                                          : style.resolved.family.has_value();
    if (!names)
        return std::nullopt;
    return complete(style.resolved, styles);
}

FontKey resolveRunFont(const StoryRun& run, const StyleSheet& styles) {
    FontReference font = run.characterLocal;
    font.inheritFrom(styleFont(styles, StyleKind::Character, run.characterStyle));
    font.inheritFrom(run.paragraph->local);
    font.inheritFrom(styleFont(styles, StyleKind::Paragraph, run.paragraph->style));
    return complete(std::move(font), styles);
}

std::vector<FontKey> collectFontUsage(const std::vector<std::unique_ptr<Story>>& stories,
                                      const StyleSheet& styles, const FontsCatalog& catalog) {
    FaceList faces(catalog);
    for (const auto& story : stories) {
        for (const StoryRun& run : story->runs())
            faces.add(resolveRunFont(run, styles));
    }
    for (StyleKind kind : {StyleKind::Paragraph, StyleKind::Character}) {
        for (const TextStyle& style : styles.styles()) {
            if (style.kind != kind)
                continue;
            if (auto face = namedFace(style, styles))
                faces.add(std::move(*face));
        }
    }
    return faces.take();
}

} // namespace Galley
