#pragma once

#include "fontmanager/Catalog.h"
#include "fontmanager/Request.h"
#include "fontmanager/SystemFonts.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace Vellumine {

// The answer to one requested font: the library's faces, and the system's when the library
// has none of the requested type active. The faces belong to the FontMatcher that made the
// match (or to its SystemFonts) and live as long as it does.
struct FontMatch {
    std::optional<FaceType> requestedType; // none for "all", empty or unknown types
    std::vector<const FaceRecord*> faces; // every matching face, by container id, the system's last
    std::vector<const FaceRecord*> typeMatching; // those of the requested type (all without one)

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
//
// With the system's fonts, a font the library has no active face of (of the requested type)
// also matches the faces fontconfig lists by that PostScript name, or, when the request
// names none, by family and style: the system's copy is active already.
//
// One matcher serves one request: it asks the catalog once per name and family and
// remembers each match, so that a request naming one large family many times costs one
// query and one match, not one per font. Use it inside one read transaction.
class FontMatcher {
public:
    explicit FontMatcher(Catalog& catalog, const SystemFonts* system = nullptr)
        : catalog(catalog), system(system) {}
    FontMatcher(const FontMatcher&) = delete;
    FontMatcher& operator=(const FontMatcher&) = delete;

    const FontMatch& match(const RequestFont& font);

private:
    const std::vector<FaceRecord>& byPostScriptName(const std::string& name);
    const std::vector<FaceRecord>& byFamily(const std::string& family);

    void addSystemFaces(const RequestFont& font, FontMatch& match) const;

    Catalog& catalog;
    const SystemFonts* system;
    std::map<std::string, std::vector<FaceRecord>> names;
    std::map<std::string, std::vector<FaceRecord>> families;
    std::map<std::string, FontMatch> matches;
};

} // namespace Vellumine
