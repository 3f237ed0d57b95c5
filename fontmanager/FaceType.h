#pragma once

#include <optional>
#include <string>

namespace Vellumine {

// The outline technology of a face, named as the plug-in's wire texts name it.
// Type 1 files are "T1"; an sfnt with CFF or CFF2 outlines is OpenType PostScript
// "OT_T1"; an sfnt with glyf outlines is OpenType TrueType "OT_TT" when its file is
// named .otf and plain TrueType "TT" otherwise (.ttf, .ttc).
enum class FaceType { type1, trueType, openTypePostScript, openTypeTrueType };

// "T1", "TT", "OT_T1" or "OT_TT".
std::string wireText(FaceType type);

// A readable name for listings and descriptions ("OpenType PostScript").
std::string technologyName(FaceType type);

// The face type for a wire text; nothing for "all", the empty text and anything unknown,
// which all mean "no particular type".
std::optional<FaceType> faceTypeFromWireText(const std::string& text);

} // namespace Vellumine
