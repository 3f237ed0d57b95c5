#include "fontmanager/FaceReader.h"

#include "fontmanager/FileStamp.h"
#include "foundation/AsciiCase.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_FONT_FORMATS_H
#include FT_TRUETYPE_TABLES_H
#include FT_TRUETYPE_TAGS_H

namespace Vellumine {

struct FaceReader::Library {
    FT_Library handle = nullptr;
};

namespace {

// Faces with more than this many entries are not a font collection but damage.
constexpr FT_Long maximumFacesPerFile = 4096;

struct FreeTypeErrorText {
    int code;
    const char* text;
};

// FreeType's own table of error texts (FT_Error_String is empty in most builds).
#undef FTERRORS_H_
#define FT_ERRORDEF(e, v, s) {e, s},
#define FT_ERROR_START_LIST {
#define FT_ERROR_END_LIST                                                                          \
    { 0, nullptr }                                                                                 \
    }                                                                                              \
    ;
const FreeTypeErrorText freeTypeErrorTexts[] =
#include FT_ERRORS_H

    std::string freeTypeError(FT_Error error) {
    for (const auto& entry : freeTypeErrorTexts) {
        if (entry.text != nullptr && entry.code == error) {
            return entry.text;
        }
    }
    return "FreeType error " + std::to_string(error);
}

bool hasSfntTable(FT_Face face, FT_ULong tag) {
    FT_ULong length = 0;
    return FT_Load_Sfnt_Table(face, tag, 0, nullptr, &length) == 0 && length > 0;
}

// Follows the host's classification so that both sides call a face by the same type.
bool classify(FT_Face face, const std::filesystem::path& file, FaceType& type) {
    const char* format = FT_Get_Font_Format(face);
    if (format != nullptr &&
        (std::strcmp(format, "Type 1") == 0 || std::strcmp(format, "CID Type 1") == 0)) {
        type = FaceType::type1;
        return true;
    }
    if (!FT_IS_SFNT(face)) {
        return false; // bare CFF, bitmap formats and the like are not offered to hosts
    }
    if (hasSfntTable(face, TTAG_CFF) || hasSfntTable(face, TTAG_CFF2)) {
        type = FaceType::openTypePostScript;
        return true;
    }
    if (!hasSfntTable(face, TTAG_glyf)) {
        return false; // bitmap-only sfnt
    }
    type = AsciiCase::lowered(file.extension().string()) == ".otf" ? FaceType::openTypeTrueType
                                                                   : FaceType::trueType;
    return true;
}

std::string textOrEmpty(const char* text) {
    return text != nullptr ? text : "";
}

} // namespace

FaceReader::FaceReader() : library(std::make_unique<Library>()) {
    if (FT_Init_FreeType(&library->handle) != 0) {
        throw std::runtime_error("FreeType could not be initialised");
    }
}

FaceReader::~FaceReader() {
    FT_Done_FreeType(library->handle);
}

FontFileReading FaceReader::read(const std::filesystem::path& file) const {
    FontFileReading reading;
    std::error_code notRegular;
    if (!std::filesystem::is_regular_file(file, notRegular)) {
        // A FIFO would block the reader, a device would never end.
        reading.problems.push_back(notRegular ? "cannot read (" + notRegular.message() + ")"
                                              : "not a regular file");
        return reading;
    }
    // Before the file is read: a change while it is makes the stamp stale, not wrong.
    const std::string stamp = fileStamp(file);
    FT_Face probe = nullptr;
    FT_Error error = FT_New_Face(library->handle, file.c_str(), -1, &probe);
    if (error != 0) {
        reading.problems.push_back("not a readable font file (" + freeTypeError(error) + ")");
        return reading;
    }
    const FT_Long faceCount = probe->num_faces;
    FT_Done_Face(probe);
    if (faceCount < 1 || faceCount > maximumFacesPerFile) {
        reading.problems.push_back("implausible number of faces (" + std::to_string(faceCount) +
                                   ")");
        return reading;
    }
    for (FT_Long index = 0; index < faceCount; ++index) {
        std::string problem;
        if (auto description = readFace(file, index, problem)) {
            description->fileStamp = stamp;
            reading.faces.push_back(std::move(*description));
        } else {
            reading.problems.push_back("face " + std::to_string(index) + ": " + problem);
        }
    }
    return reading;
}

std::optional<FaceDescription> FaceReader::readFace(const std::filesystem::path& file, long index,
                                                    std::string& problem) const {
    FT_Face face = nullptr;
    if (const FT_Error error = FT_New_Face(library->handle, file.c_str(), index, &face)) {
        problem = freeTypeError(error);
        return std::nullopt;
    }
    FaceDescription description;
    description.faceIndex = index;
    description.postScriptName = textOrEmpty(FT_Get_Postscript_Name(face));
    description.family = textOrEmpty(face->family_name);
    description.style = textOrEmpty(face->style_name);
    const bool supported = classify(face, file, description.type);
    FT_Done_Face(face);
    if (!supported) {
        problem = "not a Type 1, TrueType or OpenType outline font";
    } else if (description.postScriptName.empty()) {
        problem = "has no PostScript name";
    } else {
        return description;
    }
    return std::nullopt;
}

} // namespace Vellumine
