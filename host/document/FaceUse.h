#pragma once

#include "host/idml/FontReference.h"

#include <string>
#include <vector>

namespace Galley {

class IdmlDocument;

// Where a document uses one of its faces, for Find Font and `galley replace`.
struct FaceUse {
    FontKey key;
    std::string postscriptName; // as galley fonts shows it; empty when unknown
    bool missing = false;
    int textRuns = 0;                // runs of text set in the face
    int compositeRuns = 0;           // runs set in a composite font that uses the face
    std::vector<std::string> styles; // names of the styles that name the face
};

// Every face of the document, missing ones first, each in the order of the document's
// font usage.
std::vector<FaceUse> describeFaceUse(IdmlDocument& document);

// The document's faces that `name` denotes, as `galley fonts` and the fonts dialogs show
// them: a PostScript name, "Family Style", or the name a face without a PostScript name
// goes by ("Family-Style"). Exact matches win; otherwise case is ignored. Empty when the
// document uses no such face.
std::vector<FontKey> facesNamed(IdmlDocument& document, const std::string& name);

// "Family Style".
std::string faceTitle(const FontKey& key);

// The missing faces in a line: "2 fonts are missing: A Bold, B Regular (named only by
// styles: Title)", or "every font is installed". `onlyInStyles` tells whether some missing
// face is named by styles alone, which only a replacement in the styles can mend.
std::string missingFontsLine(const std::vector<FaceUse>& uses, bool* onlyInStyles = nullptr);

} // namespace Galley
