#include "host/fonts/FontTypes.h"

#include "foundation/AsciiCase.h"

#include <algorithm>
#include <cctype>

namespace Galley {

namespace {

std::string lowerExtension(const std::string& file) {
    auto dot = file.rfind('.');
    return AsciiCase::lowered(dot == std::string::npos ? "" : file.substr(dot + 1));
}

} // namespace

std::string fontTypeDisplayName(IPMFont::FontType type) {
    switch (type) {
    case IPMFont::kType1:
        return "Type 1";
    case IPMFont::kTrueType:
        return "TrueType";
    case IPMFont::kCID:
        return "CID";
    case IPMFont::kType3:
        return "Type 3";
    case IPMFont::kBitmap:
        return "Bitmap";
    case IPMFont::kType42:
        return "Type 42";
    case IPMFont::kOpenTypeCFF:
        return "OpenType CFF";
    case IPMFont::kOpenTypeCID:
        return "OpenType CID";
    case IPMFont::kOpenTypeTT:
        return "OpenType TrueType";
    case IPMFont::kUnknownFontType:
        break;
    }
    return "Unknown";
}

IPMFont::FontType fontTypeFromFontconfig(const std::string& format, const std::string& file) {
    if (format == "TrueType") {
        std::string extension = lowerExtension(file);
        return extension == "otf" || extension == "otc" ? IPMFont::kOpenTypeTT : IPMFont::kTrueType;
    }
    if (format == "CFF")
        return IPMFont::kOpenTypeCFF;
    if (format == "Type 1")
        return IPMFont::kType1;
    if (format == "CID Type 1")
        return IPMFont::kCID;
    if (format == "Type 42")
        return IPMFont::kType42;
    if (format == "PCF" || format == "BDF" || format == "Windows FNT")
        return IPMFont::kBitmap;
    return IPMFont::kUnknownFontType;
}

} // namespace Galley
