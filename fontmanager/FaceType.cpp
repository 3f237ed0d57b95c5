#include "fontmanager/FaceType.h"

namespace Vellumine {

std::string wireText(FaceType type) {
    switch (type) {
    case FaceType::type1:
        return "T1";
    case FaceType::trueType:
        return "TT";
    case FaceType::openTypePostScript:
        return "OT_T1";
    case FaceType::openTypeTrueType:
        return "OT_TT";
    }
    return "all";
}

std::string technologyName(FaceType type) {
    switch (type) {
    case FaceType::type1:
        return "PostScript Type 1";
    case FaceType::trueType:
        return "TrueType";
    case FaceType::openTypePostScript:
        return "OpenType PostScript";
    case FaceType::openTypeTrueType:
        return "OpenType TrueType";
    }
    return "Unknown";
}

std::optional<FaceType> faceTypeFromWireText(const std::string& text) {
    for (FaceType type : {FaceType::type1, FaceType::trueType, FaceType::openTypePostScript,
                          FaceType::openTypeTrueType}) {
        if (text == wireText(type)) {
            return type;
        }
    }
    return std::nullopt;
}

} // namespace Vellumine
