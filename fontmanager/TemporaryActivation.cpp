#include "fontmanager/TemporaryActivation.h"

#include "foundation/Logger.h"

#include <algorithm>
#include <cstdlib>
#include <set>

namespace Vellumine {

namespace {

const std::string logTag = "vellumine-temporary";

} // namespace

TemporaryActivation::TemporaryActivation(Catalog& catalog, Activation& activation,
                                         LibraryChanges& changes, IsRunning isRunning,
                                         Clock::duration gracePeriod)
    : catalog(catalog), activation(activation), changes(changes), isRunning(std::move(isRunning)),
      gracePeriod(gracePeriod) {}

void TemporaryActivation::applicationLeft(const std::string& signature, Clock::time_point now) {
    leaving[signature] = now + gracePeriod;
}

void TemporaryActivation::reviewRequesters(Clock::time_point now) {
    std::set<std::string> applications;
    for (const auto& requester : catalog.autoRequesters()) {
        applications.insert(requester.application);
    }
    for (const auto& application : applications) {
        if (!leaving.contains(application) && !isRunning(application)) {
            applicationLeft(application, now);
        }
    }
}

std::optional<TemporaryActivation::Clock::time_point> TemporaryActivation::nextDeadline() const {
    std::optional<Clock::time_point> next;
    for (const auto& [signature, deadline] : leaving) {
        if (!next || deadline < *next) {
            next = deadline;
        }
    }
    return next;
}

std::vector<std::int64_t> TemporaryActivation::deactivateDue(Clock::time_point now) {
    std::vector<std::string> gone;
    for (auto entry = leaving.begin(); entry != leaving.end();) {
        if (entry->second > now) {
            ++entry;
            continue;
        }
        // Back within its grace period (restarted): it keeps its fonts.
        if (!isRunning(entry->first)) {
            gone.push_back(entry->first);
        }
        entry = leaving.erase(entry);
    }
    if (gone.empty() || !catalog.autoDeactivation()) {
        return {};
    }
    std::vector<std::int64_t> deactivated;
    for (const auto id : facesLeftBy(gone)) {
        const ActivationResult result = activation.deactivate(id);
        Logger::log(logTag, result.message + ": every application that asked for it has left");
        if (result.outcome == ActivationResult::Outcome::changed) {
            catalog.write([&] { catalog.clearRequesters(id); });
            deactivated.push_back(id);
        }
    }
    if (!deactivated.empty()) {
        changes.announce(ChangeKind::activeFontsChanged);
    }
    return deactivated;
}

// The faces one of `gone` asked for and no running application asked for.
std::vector<std::int64_t> TemporaryActivation::facesLeftBy(const std::vector<std::string>& gone) {
    std::map<std::int64_t, std::vector<std::string>> requesters;
    for (const auto& requester : catalog.autoRequesters()) {
        requesters[requester.faceId].push_back(requester.application);
    }
    std::map<std::string, bool> running; // asked once per application, not once per face
    const auto runs = [&](const std::string& application) {
        const auto [entry, isNew] = running.try_emplace(application, false);
        if (isNew) {
            entry->second = isRunning(application);
        }
        return entry->second;
    };
    std::vector<std::int64_t> faces;
    for (const auto& [faceId, applications] : requesters) {
        const bool askedByGone = std::any_of(
            applications.begin(), applications.end(), [&](const std::string& application) {
                return std::find(gone.begin(), gone.end(), application) != gone.end();
            });
        if (askedByGone && std::none_of(applications.begin(), applications.end(), runs)) {
            faces.push_back(faceId);
        }
    }
    return faces;
}

TemporaryActivation::Clock::duration deactivationDelayFromEnvironment() {
    const char* text = std::getenv("VELLUMINE_AUTO_DEACTIVATE_DELAY");
    if (text == nullptr || *text == '\0') {
        return defaultDeactivationDelay;
    }
    char* end = nullptr;
    const double seconds = std::strtod(text, &end);
    if (*end != '\0' || !(seconds >= 0) || seconds > 86400) {
        Logger::log(logTag, std::string("ignoring VELLUMINE_AUTO_DEACTIVATE_DELAY '") + text +
                                "': not a number of seconds");
        return defaultDeactivationDelay;
    }
    return std::chrono::duration_cast<TemporaryActivation::Clock::duration>(
        std::chrono::duration<double>(seconds));
}

} // namespace Vellumine
