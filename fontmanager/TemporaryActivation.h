#pragma once

#include "fontmanager/Activation.h"
#include "fontmanager/Catalog.h"
#include "fontmanager/LibraryChanges.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace Vellumine {

// Faces activated automatically are an application's wish, not the user's: once every
// application that asked for one has left the bus, vellumine deactivates it again, after a
// grace period in which a restarting application keeps its fonts. Faces a user activated
// are never touched, and the catalog's auto-deactivate setting turns this off.
//
// Applications are known by their signature (`<targetApp>`); whether one runs is asked of
// `isRunning`, which the server answers from the bus (an application runs while its
// well-known name has an owner).
class TemporaryActivation {
public:
    using Clock = std::chrono::steady_clock;
    using IsRunning = std::function<bool(const std::string& signature)>;

    TemporaryActivation(Catalog& catalog, Activation& activation, LibraryChanges& changes,
                        IsRunning isRunning, Clock::duration gracePeriod);

    // The application's name lost its owner at `now`.
    void applicationLeft(const std::string& signature, Clock::time_point now);
    // Every application that asked for a face and does not run now counts as leaving (for
    // a server that starts after they left, or one that heard of a request from an
    // application that owns no name).
    void reviewRequesters(Clock::time_point now);

    // Deactivates the faces whose requesters have all left, for the applications whose
    // grace period ended by `now`; returns the faces deactivated.
    std::vector<std::int64_t> deactivateDue(Clock::time_point now);

    // When deactivateDue() next has something to do.
    std::optional<Clock::time_point> nextDeadline() const;

private:
    std::vector<std::int64_t> facesLeftBy(const std::vector<std::string>& gone);

    Catalog& catalog;
    Activation& activation;
    LibraryChanges& changes;
    IsRunning isRunning;
    Clock::duration gracePeriod;
    std::map<std::string, Clock::time_point> leaving; // signature → end of its grace period
};

// The grace period from $VELLUMINE_AUTO_DEACTIVATE_DELAY (seconds, fractions allowed), else
// defaultDeactivationDelay.
inline constexpr std::chrono::seconds defaultDeactivationDelay{5};
TemporaryActivation::Clock::duration deactivationDelayFromEnvironment();

} // namespace Vellumine
