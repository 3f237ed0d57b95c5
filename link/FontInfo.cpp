#include "link/FontInfo.h"

namespace {

constexpr const char* technologies[] = {"PostScript", "TrueType", "OpenType PostScript",
                                        "OpenType TrueType"};
constexpr const char* wireTypes[] = {"T1", "TT", "OT_T1", "OT_TT"};

bool isKnownType(std::int32_t type) {
    return type >= 0 && type <= 3;
}

} // namespace

std::string VLMFontInfo::getTechnology() const {
    return isKnownType(font.type) ? technologies[font.type] : "Unknown";
}

std::string VLMFontInfo::getTypeString() const {
    return isKnownType(font.type) ? wireTypes[font.type] : "";
}

std::int32_t VLMFontInfo::typeStringToEnum(const std::string& text) {
    if (text == "OT_TT") {
        return 3;
    }
    if (text == "OT_T1") {
        return 2;
    }
    if (text == "TT") {
        return 1;
    }
    if (text == "T1") {
        return 0;
    }
    return 4;
}
