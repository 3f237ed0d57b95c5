#pragma once

#include "fontmanager/Activation.h"
#include "fontmanager/Catalog.h"
#include "fontmanager/Desktop.h"
#include "fontmanager/FontMatcher.h"
#include "fontmanager/LibraryChanges.h"
#include "fontmanager/Request.h"

#include <cstddef>
#include <string>

namespace Vellumine {

// Bounds on a font reply, so that it always fits into one bus message: the smallest limit
// a bus daemon sets by default is 32 MiB per message.
struct ReplyLimits {
    std::size_t maximumBytes = 16 * 1024 * 1024;
    // <fontInfo> entries per font; `count` still says how many faces match.
    std::size_t maximumFacesListed = 100;
};

// What answering a font request may use besides the catalog: auto-activation activates
// faces and announces the change.
struct FontRequestContext {
    Catalog& catalog;
    Activation& activation;
    LibraryChanges& changes;
    ReplyLimits limits;
    SystemFontsCache& systemFonts;
    Desktop* desktop = nullptr; // told of automatic activations, when there is one
};

// Answers a "fontRequest" from the library and, unless the catalog's system-fonts setting
// is off, the fonts fontconfig lists outside the activation folder (see SystemFonts.h):
// first activates what it may on its own (see AutoActivation.h) for `application`, then one
// <font> per requested font with the counts, activity flags and container identifiers of
// the matching faces, and one <fontInfo> per matching face (at most maximumFacesListed).
// When that reply would pass maximumBytes, the <fontInfo> entries are left out; when it
// still would, the reply is an "errorReply" saying so.
std::string answerFontRequest(FontRequestContext& context, const Request& request,
                              const std::string& application, const std::string& protocolVersion);

// Whether the user has something to decide about this font, so that the application should
// show its fonts dialog instead of waiting for the font: the library holds faces of the
// requested type and none of them is active (several candidates to choose from, or one that
// auto-activation did not activate because it is off or failed).
bool asksForChoice(const FontMatch& match);

// "NimbusRoman-Regular.otf in /home/ann/fonts/urw, inactive"; a face fontconfig lists
// outside vellumine's library ends in "installed on the system".
std::string describeFace(const FaceRecord& face);

// The system's fonts for one request, or none when the setting is off or fontconfig fails
// (logged).
const SystemFonts* currentSystemFonts(FontRequestContext& context);

} // namespace Vellumine
