#pragma once

#include "fontmanager/Catalog.h"
#include "fontmanager/FaceDetails.h"

#include <functional>
#include <string>
#include <vector>

namespace Vellumine {

// Faces that share a PostScript name: fontconfig and every application take them for one
// font, so the user should see them side by side with what tells them apart.
struct DuplicateGroup {
    std::string postScriptName;
    std::vector<FaceRecord> faces;    // by container identifier
    std::vector<FaceDetails> details; // one per face, in the same order
    // What differs between the faces, of "version", "format" and "file", in that order.
    std::vector<std::string> differences;
};

using DetailsReader = std::function<FaceDetails(const FaceRecord&)>;

// The groups of two or more faces with one PostScript name, by name. Only the faces of a
// group have their files read (`read`, by default from the font file).
std::vector<DuplicateGroup> findDuplicates(const std::vector<FaceRecord>& faces,
                                           const DetailsReader& read = {});

} // namespace Vellumine
