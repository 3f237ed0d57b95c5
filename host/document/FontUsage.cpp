#include "host/document/FontUsage.h"

#include "host/idml/Story.h"
#include "host/idml/StyleSheet.h"

#include <algorithm>

namespace Galley {

namespace {

FontReference styleFont(const StyleSheet& styles, StyleKind kind, const std::string& self) {
    const TextStyle* style = styles.find(kind, self);
    return style ? style->resolved : FontReference{};
}

FontKey complete(FontReference font) {
    font.inheritFrom({std::string(kDefaultFontFamily), std::string(kDefaultFontStyle)});
    return {*font.family, *font.style};
}

void addOnce(std::vector<FontKey>& keys, FontKey key) {
    if (std::find(keys.begin(), keys.end(), key) == keys.end())
        keys.push_back(std::move(key));
}

} // namespace

FontKey resolveRunFont(const StoryRun& run, const StyleSheet& styles) {
    FontReference font = run.characterLocal;
    font.inheritFrom(styleFont(styles, StyleKind::Character, run.characterStyle));
    font.inheritFrom(run.paragraphLocal);
    font.inheritFrom(styleFont(styles, StyleKind::Paragraph, run.paragraphStyle));
    return complete(std::move(font));
}

std::vector<FontKey> collectFontUsage(const std::vector<std::unique_ptr<Story>>& stories,
                                      const StyleSheet& styles) {
    std::vector<FontKey> keys;
    for (const auto& story : stories) {
        for (const StoryRun& run : story->runs())
            addOnce(keys, resolveRunFont(run, styles));
    }
    for (StyleKind kind : {StyleKind::Paragraph, StyleKind::Character}) {
        for (const TextStyle& style : styles.styles()) {
            // A character style that sets only a face names no font of its own.
            bool names = kind == StyleKind::Paragraph ? !style.resolved.empty()
                                                      : style.resolved.family.has_value();
            if (style.kind == kind && names)
                addOnce(keys, complete(style.resolved));
        }
    }
    return keys;
}

} // namespace Galley
