#include "fontmanager/FaceDetails.h"

#include <array>
#include <cstdint>
#include <memory>

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_FONT_FORMATS_H
#include FT_SFNT_NAMES_H
#include FT_TRUETYPE_IDS_H
#include FT_TYPE1_TABLES_H

namespace Vellumine {

namespace {

// The longest name table entry read: a licence text is a few kilobytes; past this it is damage.
constexpr FT_UInt maximumNameBytes = 64 * 1024;

void appendUtf8(std::string& text, std::uint32_t c) {
    if (c < 0x80) {
        text += static_cast<char>(c);
    } else if (c < 0x800) {
        text += static_cast<char>(0xC0 | (c >> 6));
        text += static_cast<char>(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        text += static_cast<char>(0xE0 | (c >> 12));
        text += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        text += static_cast<char>(0x80 | (c & 0x3F));
    } else {
        text += static_cast<char>(0xF0 | (c >> 18));
        text += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
        text += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        text += static_cast<char>(0x80 | (c & 0x3F));
    }
}

// Windows and Unicode platform names are UTF-16 big-endian; a lone surrogate becomes U+FFFD.
std::string fromUtf16BigEndian(const FT_Byte* bytes, FT_UInt length) {
    std::string text;
    for (FT_UInt i = 0; i + 1 < length; i += 2) {
        std::uint32_t unit = (bytes[i] << 8) | bytes[i + 1];
        if (unit >= 0xD800 && unit < 0xDC00 && i + 3 < length) {
            const std::uint32_t low = (bytes[i + 2] << 8) | bytes[i + 3];
            if (low >= 0xDC00 && low < 0xE000) {
                unit = 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
                i += 2;
            }
        }
        appendUtf8(text, unit >= 0xD800 && unit < 0xE000 ? 0xFFFD : unit);
    }
    return text;
}

// Macintosh names: ASCII is all that fonts put there in practice; anything else is shown as
// U+FFFD rather than guessed.
std::string fromMacRoman(const FT_Byte* bytes, FT_UInt length) {
    std::string text;
    for (FT_UInt i = 0; i < length; ++i) {
        appendUtf8(text, bytes[i] < 0x80 ? bytes[i] : 0xFFFD);
    }
    return text;
}

// How well an entry suits: Windows English first, then any Unicode entry, then Macintosh.
int rank(const FT_SfntName& name) {
    if (name.platform_id == TT_PLATFORM_MICROSOFT) {
        return name.language_id == TT_MS_LANGID_ENGLISH_UNITED_STATES ? 4 : 3;
    }
    if (name.platform_id == TT_PLATFORM_APPLE_UNICODE) {
        return 2;
    }
    return name.platform_id == TT_PLATFORM_MACINTOSH && name.encoding_id == TT_MAC_ID_ROMAN ? 1 : 0;
}

std::string decode(const FT_SfntName& name) {
    if (name.string_len > maximumNameBytes) {
        return {};
    }
    if (name.platform_id == TT_PLATFORM_MACINTOSH) {
        return fromMacRoman(name.string, name.string_len);
    }
    return fromUtf16BigEndian(name.string, name.string_len);
}

void readNameTable(FT_Face face, FaceDetails& details) {
    struct Wanted {
        FT_UShort nameId;
        std::string FaceDetails::*field;
    };
    const std::array<Wanted, 8> wanted = {{
        {TT_NAME_ID_COPYRIGHT, &FaceDetails::copyright},
        {TT_NAME_ID_VERSION_STRING, &FaceDetails::version},
        {TT_NAME_ID_MANUFACTURER, &FaceDetails::manufacturer},
        {TT_NAME_ID_DESIGNER, &FaceDetails::designer},
        {TT_NAME_ID_VENDOR_URL, &FaceDetails::vendorUrl},
        {TT_NAME_ID_DESIGNER_URL, &FaceDetails::designerUrl},
        {TT_NAME_ID_LICENSE, &FaceDetails::licence},
        {TT_NAME_ID_LICENSE_URL, &FaceDetails::licenceUrl},
    }};
    std::array<int, wanted.size()> bestRank{};
    const FT_UInt count = FT_Get_Sfnt_Name_Count(face);
    for (FT_UInt i = 0; i < count; ++i) {
        FT_SfntName name{};
        if (FT_Get_Sfnt_Name(face, i, &name) != 0) {
            continue;
        }
        for (std::size_t w = 0; w < wanted.size(); ++w) {
            const int r = rank(name);
            if (name.name_id == wanted[w].nameId && r > bestRank[w]) {
                bestRank[w] = r;
                details.*wanted[w].field = decode(name);
            }
        }
    }
}

std::string textOf(const FT_String* text) {
    return text != nullptr ? text : "";
}

void readType1Info(FT_Face face, FaceDetails& details) {
    PS_FontInfoRec info{};
    if (FT_Get_PS_Font_Info(face, &info) != 0) {
        return;
    }
    details.version = textOf(info.version);
    details.copyright = textOf(info.notice);
}

} // namespace

FaceDetails readFaceDetails(const std::filesystem::path& file, long faceIndex) {
    FaceDetails details;
    std::error_code error;
    if (!std::filesystem::is_regular_file(file, error)) {
        details.problem = "the file " + file.string() + " is gone or not a regular file";
        return details;
    }
    FT_Library library = nullptr;
    if (FT_Init_FreeType(&library) != 0) {
        details.problem = "FreeType could not be initialised";
        return details;
    }
    const std::unique_ptr<FT_LibraryRec_, decltype(&FT_Done_FreeType)> libraryOwner(
        library, FT_Done_FreeType);
    FT_Face face = nullptr;
    if (FT_New_Face(library, file.c_str(), faceIndex, &face) != 0) {
        details.problem = file.filename().string() + " cannot be read as a font";
        return details;
    }
    const char* format = FT_Get_Font_Format(face);
    details.format = format != nullptr ? format : "";
    if (FT_IS_SFNT(face)) {
        readNameTable(face, details);
    } else {
        readType1Info(face, details);
    }
    FT_Done_Face(face);
    return details;
}

} // namespace Vellumine
