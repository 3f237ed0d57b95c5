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

struct AutomaticCandidates {
    // For each requested font of which no face is active, the only face of the requested
    // type, when there is exactly one.
    std::vector<std::int64_t> toActivate;
    // The library's active faces that requested fonts matched: the application asks for
    // them too, which matters for those active automatically for another application.
    std::vector<std::int64_t> active;
};

// A font the system already has (in `system`, when given) counts as active: activating the
// library's copy would give fontconfig a second one.
AutomaticCandidates automaticActivationCandidates(Catalog& catalog, const Request& request,
                                                  const SystemFonts* system = nullptr);

struct AutomaticActivation {
    std::vector<std::string> activated; // PostScript names of the faces that became active
    // The application was recorded as asking for faces active automatically, so it now
    // matters when it leaves.
    bool requesterRecorded = false;
};

// Activates the candidates for `application` (recorded with them, so that they can be
// listed, deactivated together, and deactivated once the application has left), records
// the application as asking for the automatic faces it matched, and announces the change.
AutomaticActivation activateAutomatically(Catalog& catalog, Activation& activation,
                                          LibraryChanges& changes, const Request& request,
                                          const std::string& application,
                                          const SystemFonts* system = nullptr);

} // namespace Vellumine
