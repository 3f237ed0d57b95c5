#pragma once

#include "fontmanager/Catalog.h"
#include "fontmanager/Request.h"

#include <optional>
#include <vector>

namespace Vellumine {

// The library's answer to one requested font.
struct FontMatch {
    std::optional<FaceType> requestedType; // none for "all", empty or unknown types
    std::vector<FaceRecord> faces;         // every matching face, by container id
    std::vector<FaceRecord> typeMatching;  // those of the requested type (all without one)

    bool isActive() const;
    bool isTypeMatchingActive() const;
    // The face to name as container: an active one first, then one of the requested type,
    // then the oldest; none when nothing matches.
    const FaceRecord* bestFace() const;
    const FaceRecord* bestTypeMatchingFace() const;
};

// Matches by PostScript name (exact); when no face has that name, by family (ignoring ASCII
// case) and style. An empty style stands for the family's regular face, whichever of
// "Regular", "Roman", "Normal", "Book", "Plain" or "Standard" it is called.
FontMatch matchFont(Catalog& catalog, const RequestFont& font);

} // namespace Vellumine
