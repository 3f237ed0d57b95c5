#include "ui/FontRowStatus.h"

#include "resources/VellumineIDs.h"

namespace FontRowStatus {

std::string textKey(const VLMFontInfo& font) {
    if (font.stateFlag1)
        return kVellumineReplacedTextKey;
    const auto candidates = font.font.typeMatchingCount;
    if (candidates > 1)
        return kVellumineMulitpleTextKey;
    if (candidates == 1) {
        // Active in the font manager but not yet seen by the document: on its way.
        const bool pending = font.font.isTypeMatchingActive && !font.stateFlag4;
        return pending ? kVelluminePendingTextKey : kVellumineAvailableTextKey;
    }
    return font.hasTypeMatching ? std::string() : std::string(kVellumineMissingTextKey);
}

RGBColor colour(const VLMFontInfo& font) {
    if (font.stateFlag1 || font.font.typeMatchingCount > 1)
        return orange;
    if (font.font.typeMatchingCount != 0 && font.hasTypeMatching)
        return green;
    return red;
}

} // namespace FontRowStatus
