#pragma once

#include "fontmanager/Catalog.h"
#include "fontmanager/FontMatcher.h"
#include "fontmanager/Request.h"

#include <string>

namespace Vellumine {

// Answers a "fontRequest": one <font> per requested font with the counts, activity flags
// and container identifiers of the matching faces, and one <fontInfo> per matching face.
std::string answerFontRequest(Catalog& catalog, const Request& request,
                              const std::string& protocolVersion);

// Whether vellumine would rather show its own choice than let the application activate on
// its own: several faces of the requested type match and none of them is active, so the
// user has a choice to make.
bool asksForChoice(const FontMatch& match);

// "NimbusRoman-Regular, Nimbus Roman Regular, OpenType PostScript, inactive,
// NimbusRoman-Regular.otf"
std::string describeFace(const FaceRecord& face);

} // namespace Vellumine
