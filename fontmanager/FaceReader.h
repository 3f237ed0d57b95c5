#pragma once

#include "fontmanager/FaceType.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Vellumine {

// What the library needs to know of one face of a font file.
struct FaceDescription {
    long faceIndex = 0;
    std::string postScriptName;
    std::string family;
    std::string style;
    FaceType type = FaceType::trueType;
    // The file as it was read (fileStamp()); empty when it was not to be trusted.
    std::string fileStamp = {};
};

// The faces of one font file, or why none could be read. A collection yields one entry per
// usable face; faces that cannot be used are listed in `problems` and skipped.
struct FontFileReading {
    std::vector<FaceDescription> faces;
    std::vector<std::string> problems;
};

// Reads names and formats with FreeType. Never throws for a damaged file: the reason goes
// into `problems`.
class FaceReader {
public:
    FaceReader();
    ~FaceReader();
    FaceReader(const FaceReader&) = delete;
    FaceReader& operator=(const FaceReader&) = delete;

    FontFileReading read(const std::filesystem::path& file) const;
    // One face of a file already known to be a regular file; nothing, with the reason in
    // `problem`, when it cannot be read or used.
    std::optional<FaceDescription> readFace(const std::filesystem::path& file, long index,
                                            std::string& problem) const;

private:
    struct Library;
    std::unique_ptr<Library> library;
};

} // namespace Vellumine
