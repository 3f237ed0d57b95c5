#pragma once

#include <filesystem>
#include <string>

namespace Vellumine {

// What a font says of itself beyond its names: from an sfnt's name table, or from a Type 1
// font's info dictionary (which has no URLs, no designer and no licence of its own).
struct FaceDetails {
    std::string format; // FreeType's name of the format: "TrueType", "CFF", "Type 1"
    std::string version;
    std::string copyright;
    std::string manufacturer; // the foundry
    std::string designer;
    std::string licence;
    std::string licenceUrl;
    std::string vendorUrl;
    std::string designerUrl;
    // Why nothing could be read; empty when the face was read.
    std::string problem;
};

// Reads one face of a file with FreeType. Never throws: a vanished or damaged file gives
// `problem`.
FaceDetails readFaceDetails(const std::filesystem::path& file, long faceIndex);

} // namespace Vellumine
