#include "host/document/FontReplacer.h"

#include "host/document/FontUsage.h"
#include "host/document/IdmlDocument.h"

#include <algorithm>
#include <optional>

namespace Galley {

namespace {

bool isAnyOf(const std::vector<FontKey>& keys, const FontKey& key) {
    return std::find(keys.begin(), keys.end(), key) != keys.end();
}

// What a run or style should name once the replacement is done: the new face in place of an
// old one, otherwise what it named before.
FontKey wanted(const FontKey& before, const std::vector<FontKey>& from, const FontKey& to) {
    return isAnyOf(from, before) ? to : before;
}

// How far each style sits from the top of its inheritance chain (the roots: 0).
std::vector<int> inheritanceDepths(const StyleSheet& sheet) {
    const std::size_t count = sheet.styles().size();
    std::vector<int> depth(count, -1);
    for (std::size_t start = 0; start < count; ++start) {
        std::vector<std::size_t> chain;
        std::optional<std::size_t> at = start;
        while (at && depth[*at] < 0) {
            chain.push_back(*at);
            at = sheet.parentOf(*at);
        }
        int next = at ? depth[*at] + 1 : 0;
        for (auto i = chain.rbegin(); i != chain.rend(); ++i)
            depth[*i] = next++;
    }
    return depth;
}

// Redefines the styles level by level from the top of the chains, so that a style is only
// given a face of its own where what it inherits does not already give it what it should.
std::vector<std::string> redefineStyles(StyleSheet& sheet, const std::vector<FontKey>& from,
                                        const FontKey& to) {
    const auto& styles = sheet.styles();
    std::vector<std::optional<FontKey>> before;
    for (const TextStyle& style : styles)
        before.push_back(namedFace(style, sheet));
    const std::vector<int> depth = inheritanceDepths(sheet);
    const int deepest = depth.empty() ? -1 : *std::max_element(depth.begin(), depth.end());

    std::vector<std::string> redefined;
    for (int level = 0; level <= deepest; ++level) {
        std::vector<std::pair<std::size_t, FontKey>> changes;
        for (std::size_t i = 0; i < styles.size(); ++i) {
            if (depth[i] != level || !before[i])
                continue;
            const FontKey goal = wanted(*before[i], from, to);
            if (namedFace(styles[i], sheet) != goal)
                changes.emplace_back(i, goal);
            if (isAnyOf(from, *before[i]))
                redefined.push_back(styles[i].title());
        }
        sheet.setOwnFonts(changes);
    }
    return redefined;
}

bool usesAnyOf(const IdmlDocument& document, const FontKey& key, const std::vector<FontKey>& from) {
    const auto* faces = document.catalog().composite(key.family);
    return faces && std::any_of(faces->begin(), faces->end(),
                                [&](const FontKey& face) { return isAnyOf(from, face); });
}

} // namespace

ReplacementResult replaceFaces(IdmlDocument& document, const std::vector<FontKey>& from,
                               const FontKey& to, bool redefine) {
    ReplacementResult result;
    // What every run is set in now: a style change below must move only the old faces.
    std::vector<std::vector<FontKey>> before;
    for (const auto& story : document.stories()) {
        auto& keys = before.emplace_back();
        for (const StoryRun& run : story->runs())
            keys.push_back(resolveRunFont(run, document.styles()));
    }
    if (redefine)
        result.styles = redefineStyles(document.styles(), from, to);

    for (std::size_t s = 0; s < document.stories().size(); ++s) {
        Story& story = *document.stories()[s];
        std::vector<std::pair<std::size_t, FontKey>> changes;
        for (std::size_t r = 0; r < story.runs().size(); ++r) {
            const FontKey& was = before[s][r];
            const bool replaced = isAnyOf(from, was);
            result.runsReplaced += replaced;
            result.compositeRuns += usesAnyOf(document, was, from);
            const FontKey goal = wanted(was, from, to);
            if (resolveRunFont(story.runs()[r], document.styles()) == goal)
                continue;
            changes.emplace_back(r, goal);
            result.runsKept += !replaced;
        }
        story.applyLocalFonts(changes);
    }
    document.usage().Update();
    return result;
}

} // namespace Galley
