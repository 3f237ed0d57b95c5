#include "fontmanager/FontMatcher.h"

#include "foundation/AsciiCase.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace Vellumine {

namespace {

bool isRegularStyle(const std::string& style) {
    static const std::array<std::string_view, 6> regular = {"Regular", "Roman", "Normal",
                                                            "Book",    "Plain", "Standard"};
    return std::any_of(regular.begin(), regular.end(),
                       [&](std::string_view name) { return AsciiCase::equal(style, name); });
}

bool styleMatches(const std::string& wanted, const std::string& style) {
    return wanted.empty() ? isRegularStyle(style) : AsciiCase::equal(wanted, style);
}

// fontconfig lists a face's names in pairs, one family and style for each way the font
// names itself ("DejaVu Sans" "Condensed Bold", "DejaVu Sans Condensed" "Bold"), so a family
// goes with its own style; a face whose lists differ in length is taken at any pairing.
bool namedAs(const SystemFace& face, const std::string& family, const std::string& style) {
    const bool paired = face.families.size() == face.styles.size();
    for (std::size_t i = 0; i < face.families.size(); ++i) {
        if (!AsciiCase::equal(face.families[i], family)) {
            continue;
        }
        if (paired ? styleMatches(style, face.styles[i])
                   : std::any_of(face.styles.begin(), face.styles.end(),
                                 [&](const auto& named) { return styleMatches(style, named); })) {
            return true;
        }
    }
    return false;
}

const FaceRecord* firstActive(const std::vector<const FaceRecord*>& faces) {
    const auto active = std::find_if(faces.begin(), faces.end(),
                                     [](const FaceRecord* face) { return face->active; });
    return active != faces.end() ? *active : nullptr;
}

FontMatch makeMatch(const RequestFont& font, const std::vector<FaceRecord>& candidates,
                    bool byStyle) {
    FontMatch match;
    match.requestedType = faceTypeFromWireText(font.type);
    for (const auto& face : candidates) {
        if (byStyle && !styleMatches(font.styleName, face.style)) {
            continue;
        }
        match.faces.push_back(&face);
        if (!match.requestedType || face.type == *match.requestedType) {
            match.typeMatching.push_back(&face);
        }
    }
    return match;
}

} // namespace

bool FontMatch::isActive() const {
    return firstActive(faces) != nullptr;
}

bool FontMatch::isTypeMatchingActive() const {
    return firstActive(typeMatching) != nullptr;
}

const FaceRecord* FontMatch::bestFace() const {
    if (const FaceRecord* active = firstActive(faces)) {
        return active;
    }
    if (!typeMatching.empty()) {
        return typeMatching.front();
    }
    return faces.empty() ? nullptr : faces.front();
}

const FaceRecord* FontMatch::bestTypeMatchingFace() const {
    if (const FaceRecord* active = firstActive(typeMatching)) {
        return active;
    }
    return typeMatching.empty() ? nullptr : typeMatching.front();
}

const std::vector<FaceRecord>& FontMatcher::byPostScriptName(const std::string& name) {
    auto found = names.find(name);
    if (found == names.end()) {
        found = names.emplace(name, catalog.facesByPostScriptName(name)).first;
    }
    return found->second;
}

const std::vector<FaceRecord>& FontMatcher::byFamily(const std::string& family) {
    const std::string key = AsciiCase::lowered(family);
    auto found = families.find(key);
    if (found == families.end()) {
        found = families.emplace(key, catalog.facesByFamily(family)).first;
    }
    return found->second;
}

void FontMatcher::addSystemFaces(const RequestFont& font, FontMatch& match) const {
    if (system == nullptr || match.isTypeMatchingActive()) {
        return;
    }
    const bool byName = !font.psName.empty();
    const auto candidates =
        byName ? system->byPostScriptName(font.psName) : system->byFamily(font.familyName);
    for (const SystemFace* face : candidates) {
        if (!byName && !namedAs(*face, font.familyName, font.styleName)) {
            continue;
        }
        match.faces.push_back(&face->record);
        if (!match.requestedType || face->record.type == *match.requestedType) {
            match.typeMatching.push_back(&face->record);
        }
    }
}

const FontMatch& FontMatcher::match(const RequestFont& font) {
    // The key names what the faces were found by, so that fonts differing only in what
    // was not used share one match.
    const bool byName =
        !font.psName.empty() && (!byPostScriptName(font.psName).empty() || font.familyName.empty());
    // The system's fonts are looked up by the requested PostScript name whenever there is one.
    const std::string key = (byName ? "name\n" + font.psName + "\n" + font.type
                                    : "family\n" + AsciiCase::lowered(font.familyName) + "\n" +
                                          AsciiCase::lowered(font.styleName) + "\n" + font.type) +
                            (system != nullptr && !byName ? "\n" + font.psName : "");
    auto found = matches.find(key);
    if (found != matches.end()) {
        return found->second;
    }
    static const std::vector<FaceRecord> none;
    const auto& candidates = byName                    ? byPostScriptName(font.psName)
                             : font.familyName.empty() ? none
                                                       : byFamily(font.familyName);
    FontMatch match = makeMatch(font, candidates, !byName);
    addSystemFaces(font, match);
    return matches.emplace(key, std::move(match)).first->second;
}

} // namespace Vellumine
