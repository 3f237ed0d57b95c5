#include "fontmanager/FontMatcher.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string_view>

namespace Vellumine {

namespace {

bool equalIgnoringCase(std::string_view a, std::string_view b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
               return std::tolower(static_cast<unsigned char>(x)) ==
                      std::tolower(static_cast<unsigned char>(y));
           });
}

bool isRegularStyle(const std::string& style) {
    static const std::array<std::string_view, 6> regular = {"Regular", "Roman", "Normal",
                                                            "Book",    "Plain", "Standard"};
    return std::any_of(regular.begin(), regular.end(),
                       [&](std::string_view name) { return equalIgnoringCase(style, name); });
}

bool styleMatches(const std::string& wanted, const std::string& style) {
    return wanted.empty() ? isRegularStyle(style) : equalIgnoringCase(wanted, style);
}

std::vector<FaceRecord> candidates(Catalog& catalog, const RequestFont& font) {
    if (!font.psName.empty()) {
        auto byName = catalog.facesByPostScriptName(font.psName);
        if (!byName.empty() || font.familyName.empty()) {
            return byName;
        }
    }
    if (font.familyName.empty()) {
        return {};
    }
    auto family = catalog.facesByFamily(font.familyName);
    std::erase_if(
        family, [&](const FaceRecord& face) { return !styleMatches(font.styleName, face.style); });
    return family;
}

const FaceRecord* firstActive(const std::vector<FaceRecord>& faces) {
    const auto active = std::find_if(faces.begin(), faces.end(),
                                     [](const FaceRecord& face) { return face.active; });
    return active != faces.end() ? &*active : nullptr;
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
        return &typeMatching.front();
    }
    return faces.empty() ? nullptr : &faces.front();
}

const FaceRecord* FontMatch::bestTypeMatchingFace() const {
    if (const FaceRecord* active = firstActive(typeMatching)) {
        return active;
    }
    return typeMatching.empty() ? nullptr : &typeMatching.front();
}

FontMatch matchFont(Catalog& catalog, const RequestFont& font) {
    FontMatch match;
    match.requestedType = faceTypeFromWireText(font.type);
    match.faces = candidates(catalog, font);
    for (const auto& face : match.faces) {
        if (!match.requestedType || face.type == *match.requestedType) {
            match.typeMatching.push_back(face);
        }
    }
    return match;
}

} // namespace Vellumine
