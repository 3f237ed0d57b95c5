#include "host/document/FaceUse.h"

#include "foundation/AsciiCase.h"

#include "host/document/FontUsage.h"
#include "host/document/IdmlDocument.h"

#include <algorithm>
#include <cctype>
#include <unordered_map>

namespace Galley {

namespace {

std::string keyText(const FontKey& key) {
    return key.family + '\n' + key.style;
}

} // namespace

std::string faceTitle(const FontKey& key) {
    return key.family + " " + key.style;
}

std::vector<FaceUse> describeFaceUse(IdmlDocument& document) {
    document.usage().Update();
    std::vector<FaceUse> uses;
    std::unordered_map<std::string, std::size_t> index;
    for (bool missing : {true, false}) {
        for (const auto& entry : missing ? document.usage().missing() : document.usage().used()) {
            index.emplace(keyText(entry.key), uses.size());
            FaceUse& use = uses.emplace_back();
            use.key = entry.key;
            use.postscriptName = document.resolver().postscriptName(entry.key);
            use.missing = missing;
        }
    }
    // Each face of a composite font counts what is set in the composite.
    const auto forEachFace = [&](const FontKey& key, auto&& record) {
        if (const auto* faces = document.catalog().composite(key.family)) {
            for (const FontKey& face : *faces)
                if (auto found = index.find(keyText(face)); found != index.end())
                    record(uses[found->second], true);
        } else if (auto found = index.find(keyText(key)); found != index.end()) {
            record(uses[found->second], false);
        }
    };
    for (const auto& story : document.stories()) {
        for (const StoryRun& run : story->runs())
            forEachFace(resolveRunFont(run, document.styles()), [](FaceUse& use, bool composite) {
                ++(composite ? use.compositeRuns : use.textRuns);
            });
    }
    for (const TextStyle& style : document.styles().styles()) {
        if (auto face = namedFace(style, document.styles()))
            forEachFace(*face, [&](FaceUse& use, bool) {
                if (std::find(use.styles.begin(), use.styles.end(), style.title()) ==
                    use.styles.end())
                    use.styles.push_back(style.title());
            });
    }
    return uses;
}

std::vector<FontKey> facesNamed(IdmlDocument& document, const std::string& name) {
    if (name.empty())
        return {};
    document.usage().Update();
    const FontResolver& resolver = document.resolver();
    for (bool exact : {true, false}) {
        const auto same = [&](const std::string& a) {
            return exact ? a == name : AsciiCase::equal(a, name);
        };
        std::vector<FontKey> found;
        for (const auto* list : {&document.usage().missing(), &document.usage().used()}) {
            for (const auto& entry : *list) {
                if (same(resolver.postscriptName(entry.key)) ||
                    same(resolver.identity(entry.key)) || same(faceTitle(entry.key)))
                    found.push_back(entry.key);
            }
        }
        if (!found.empty())
            return found;
    }
    return {};
}

std::string missingFontsLine(const std::vector<FaceUse>& uses, bool* onlyInStyles) {
    std::string names;
    int missing = 0;
    bool styled = false;
    for (const FaceUse& use : uses) {
        if (!use.missing)
            continue;
        names += (missing++ ? ", " : " ") + faceTitle(use.key);
        if (use.textRuns == 0 && use.compositeRuns == 0 && !use.styles.empty()) {
            styled = true;
            names += " (named only by styles: ";
            for (std::size_t i = 0; i < use.styles.size(); ++i)
                names += (i ? ", " : "") + use.styles[i];
            names += ")";
        }
    }
    if (onlyInStyles)
        *onlyInStyles = styled;
    if (missing == 0)
        return "every font is installed";
    return std::to_string(missing) + (missing == 1 ? " font is" : " fonts are") +
           " missing:" + names;
}

} // namespace Galley
