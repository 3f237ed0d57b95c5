#pragma once

#include "host/fonts/InstalledFace.h"

#include <string>
#include <vector>

namespace VLMTest {

// Installed faces that a test lists itself, in place of fontconfig; adding one counts as a
// change of the font folders.
struct ListedFaces : Galley::FaceSource {
    std::vector<Galley::InstalledFace> faces;
    bool changed = true;

    std::vector<Galley::InstalledFace> load() override {
        changed = false;
        return faces;
    }
    bool changedSinceLoad() override { return changed; }
    void add(const std::string& ps, const std::string& family, const std::string& style,
             IPMFont::FontType type) {
        faces.push_back(face(ps, family, style, type));
        changed = true;
    }
    static Galley::InstalledFace face(const std::string& ps, const std::string& family,
                                      const std::string& style, IPMFont::FontType type) {
        Galley::InstalledFace face;
        face.postscriptName = ps;
        face.families = {family};
        face.styles = {style};
        face.fullName = family + " " + style;
        face.file = "/nonexistent/" + ps + "." + std::to_string(type); // a file of its own
        face.type = type;
        return face;
    }
};

} // namespace VLMTest
