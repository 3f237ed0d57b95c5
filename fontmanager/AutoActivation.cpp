#include "fontmanager/AutoActivation.h"

#include "fontmanager/FontMatcher.h"
#include "foundation/Logger.h"

#include <algorithm>
#include <set>

namespace Vellumine {

namespace {

void sortUnique(std::vector<std::int64_t>& ids) {
    std::sort(ids.begin(), ids.end());
    ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
}

// Adds `application` to the requesters of the automatic faces among `active`; true when it
// was not one of them yet. One query of the (small) set of automatic faces per request.
bool recordRequester(Catalog& catalog, const std::vector<std::int64_t>& active,
                     const std::string& application) {
    std::set<std::int64_t> automatic, askedAlready;
    for (const auto& requester : catalog.autoRequesters()) {
        automatic.insert(requester.faceId);
        if (requester.application == application) {
            askedAlready.insert(requester.faceId);
        }
    }
    std::vector<std::int64_t> added;
    for (const auto id : active) {
        if (automatic.contains(id) && !askedAlready.contains(id)) {
            added.push_back(id);
        }
    }
    if (!added.empty()) {
        catalog.write([&] {
            for (const auto id : added) {
                catalog.addRequester(id, application);
            }
        });
    }
    return !added.empty();
}

} // namespace

AutomaticCandidates automaticActivationCandidates(Catalog& catalog, const Request& request,
                                                  const SystemFonts* system) {
    AutomaticCandidates candidates;
    catalog.read([&] {
        FontMatcher matcher(catalog, system);
        for (const auto& font : request.fonts) {
            const FontMatch& match = matcher.match(font);
            if (!match.isActive() && match.typeMatching.size() == 1) {
                candidates.toActivate.push_back(match.typeMatching.front()->id);
            }
            for (const FaceRecord* face : match.faces) {
                if (face->active && !face->onSystem) {
                    candidates.active.push_back(face->id);
                }
            }
        }
    });
    sortUnique(candidates.toActivate);
    sortUnique(candidates.active);
    return candidates;
}

AutomaticActivation activateAutomatically(Catalog& catalog, Activation& activation,
                                          LibraryChanges& changes, const Request& request,
                                          const std::string& application,
                                          const SystemFonts* system) {
    auto candidates = automaticActivationCandidates(catalog, request, system);
    auto& ids = candidates.toActivate;
    if (ids.size() > maximumAutomaticActivations) {
        Logger::log("vellumine-auto", "activating only " +
                                          std::to_string(maximumAutomaticActivations) + " of " +
                                          std::to_string(ids.size()) + " faces for " + application);
        ids.resize(maximumAutomaticActivations);
    }
    AutomaticActivation outcome;
    // An application's wish, not the user's: a face the user activated stays theirs. Who
    // asked for a face in an earlier activation no longer counts once it is activated anew.
    const auto results = activation.activateAll(
        ids, {application, false}, [&](std::int64_t id) { catalog.clearRequesters(id); });
    for (std::size_t i = 0; i < ids.size(); ++i) {
        Logger::log("vellumine-auto", results[i].message + " for " + application);
        if (results[i].outcome == ActivationResult::Outcome::changed) {
            if (const auto face = catalog.face(ids[i])) {
                outcome.activated.push_back(face->postScriptName);
            }
            outcome.requesterRecorded = true;
        }
    }
    if (!candidates.active.empty() && recordRequester(catalog, candidates.active, application)) {
        outcome.requesterRecorded = true;
    }
    if (!outcome.activated.empty()) {
        changes.announce(ChangeKind::activeFontsChanged);
    }
    return outcome;
}

} // namespace Vellumine
