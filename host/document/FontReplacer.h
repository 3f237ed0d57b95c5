#pragma once

#include "host/idml/FontReference.h"

#include <string>
#include <vector>

namespace Galley {

class IdmlDocument;

struct ReplacementResult {
    int runsReplaced = 0;            // runs now set in the new face
    std::vector<std::string> styles; // styles redefined to name the new face
    int runsKept = 0;                // runs a style change moved, set back to their own face
    int compositeRuns = 0;           // runs set in a composite font using an old face: left
};

// Galley's own font replacement, the road of Find Font and `galley replace`.
//
// Every run of text set in one of `from` is set in `to` instead, as a local family and face
// on the run. With `redefineStyles`, every paragraph and character style (the root styles
// included) that names one of `from` is redefined to name `to` itself, outermost first, so
// that no style names the old face any more and the styles' other users follow. Nothing else
// changes face: a run or style that only inherited part of its font from a redefined style
// (a bold run in a redefined paragraph style, a style based on one) keeps the face it had.
// Text set in a composite font is left as it is; the composite's definition names the face.
ReplacementResult replaceFaces(IdmlDocument& document, const std::vector<FontKey>& from,
                               const FontKey& to, bool redefineStyles);

} // namespace Galley
