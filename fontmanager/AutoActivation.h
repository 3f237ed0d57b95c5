#pragma once

#include "fontmanager/Activation.h"
#include "fontmanager/Catalog.h"
#include "fontmanager/LibraryChanges.h"
#include "fontmanager/Request.h"
#include "fontmanager/SystemFonts.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Vellumine {

// A font request is also the application's wish to use those fonts: where there is no
// choice to make, vellumine activates the face before it answers.

// At most this many faces are activated for one request; the rest are answered as they
// are, so that one request cannot keep the server busy for long.
inline constexpr std::size_t maximumAutomaticActivations = 500;

// The faces a font request may activate on its own: for each requested font of which no
// face is active, the only face of the requested type, when there is exactly one. A font
// the system already has (in `system`, when given) counts as active: activating the
// library's copy would give fontconfig a second one.
std::vector<std::int64_t> automaticActivationCandidates(Catalog& catalog, const Request& request,
                                                        const SystemFonts* system = nullptr);

// Activates those faces for `application` (recorded with them, so that they can be listed
// and deactivated together) and announces the change; returns how many became active.
int activateAutomatically(Catalog& catalog, Activation& activation, LibraryChanges& changes,
                          const Request& request, const std::string& application,
                          const SystemFonts* system = nullptr);

} // namespace Vellumine
