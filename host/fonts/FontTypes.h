#pragma once

#include "sdk/IPMFont.h"

#include <string>

namespace Galley {

// The host's name for a font type, as `galley fonts` prints it: "Type 1", "TrueType",
// "OpenType CFF", "OpenType TrueType", ..., "Unknown".
std::string fontTypeDisplayName(IPMFont::FontType type);

// A face's type from fontconfig's FC_FONTFORMAT and its file. TrueType outlines count as
// OpenType TrueType in an .otf/.otc container and as TrueType otherwise; CFF outlines are
// OpenType CFF.
IPMFont::FontType fontTypeFromFontconfig(const std::string& format, const std::string& file);

} // namespace Galley
