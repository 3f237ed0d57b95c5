#include "fontmanager/AutoActivation.h"

#include "fontmanager/FontMatcher.h"
#include "foundation/Logger.h"

#include <algorithm>

namespace Vellumine {

std::vector<std::int64_t> automaticActivationCandidates(Catalog& catalog, const Request& request,
                                                        const SystemFonts* system) {
    std::vector<std::int64_t> ids;
    catalog.read([&] {
        FontMatcher matcher(catalog, system);
        for (const auto& font : request.fonts) {
            const FontMatch& match = matcher.match(font);
            if (!match.isActive() && match.typeMatching.size() == 1) {
                ids.push_back(match.typeMatching.front()->id);
            }
        }
    });
    std::sort(ids.begin(), ids.end());
    ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
    return ids;
}

int activateAutomatically(Catalog& catalog, Activation& activation, LibraryChanges& changes,
                          const Request& request, const std::string& application,
                          const SystemFonts* system) {
    auto ids = automaticActivationCandidates(catalog, request, system);
    if (ids.size() > maximumAutomaticActivations) {
        Logger::log("vellumine-auto", "activating only " +
                                          std::to_string(maximumAutomaticActivations) + " of " +
                                          std::to_string(ids.size()) + " faces for " + application);
        ids.resize(maximumAutomaticActivations);
    }
    int activated = 0;
    for (const auto id : ids) {
        // An application's wish, not the user's: a face the user activated stays theirs.
        const ActivationResult result = activation.activate(id, {application, false});
        Logger::log("vellumine-auto", result.message + " for " + application);
        activated += result.outcome == ActivationResult::Outcome::changed ? 1 : 0;
    }
    if (activated > 0) {
        changes.announce(ChangeKind::activeFontsChanged);
    }
    return activated;
}

} // namespace Vellumine
