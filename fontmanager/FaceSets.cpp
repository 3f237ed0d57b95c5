#include "fontmanager/FaceSets.h"

#include <algorithm>

namespace Vellumine {

namespace {

constexpr std::size_t maximumNameBytes = 200;

} // namespace

FaceSets::FaceSets(Catalog& catalog, Activation& activation, LibraryChanges& changes)
    : catalog(catalog), activation(activation), changes(changes) {}

void FaceSets::checkName(const std::string& name) {
    if (name.empty() || name.size() > maximumNameBytes) {
        throw BadName("a set name has 1 to " + std::to_string(maximumNameBytes) + " bytes");
    }
    if (std::any_of(name.begin(), name.end(),
                    [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; })) {
        throw BadName("a set name holds no control characters");
    }
}

std::vector<FaceSet> FaceSets::all() {
    return catalog.sets();
}

std::int64_t FaceSets::create(const std::string& name) {
    checkName(name);
    std::int64_t id = 0;
    catalog.write([&] { id = catalog.createSet(name); });
    return id;
}

bool FaceSets::remove(const std::string& name) {
    bool removed = false;
    catalog.write([&] { removed = catalog.deleteSet(name); });
    return removed;
}

std::int64_t FaceSets::existing(const std::string& name) {
    const auto id = catalog.setByName(name);
    if (!id) {
        throw std::runtime_error("no set named '" + name + "'");
    }
    return *id;
}

std::vector<FaceRecord> FaceSets::faces(const std::string& name) {
    std::vector<FaceRecord> result;
    for (const auto id : catalog.setMembers(existing(name))) {
        if (auto face = catalog.face(id)) {
            result.push_back(std::move(*face));
        }
    }
    return result;
}

void FaceSets::add(const std::string& name, const std::vector<std::int64_t>& faceIds) {
    catalog.write([&] {
        const std::int64_t set = existing(name);
        for (const auto id : faceIds) {
            if (!catalog.face(id)) {
                throw std::runtime_error("no face with container id " + std::to_string(id));
            }
        }
        for (const auto id : faceIds) {
            catalog.addToSet(set, id);
        }
    });
}

void FaceSets::take(const std::string& name, const std::vector<std::int64_t>& faceIds) {
    catalog.write([&] {
        const std::int64_t set = existing(name);
        for (const auto id : faceIds) {
            catalog.removeFromSet(set, id);
        }
    });
}

std::vector<ActivationResult> FaceSets::change(const std::string& name, bool activate) {
    std::vector<ActivationResult> results;
    bool changed = false;
    for (const auto id : catalog.setMembers(existing(name))) {
        results.push_back(activate ? activation.activate(id) : activation.deactivate(id));
        changed = changed || results.back().outcome == ActivationResult::Outcome::changed;
    }
    if (changed) {
        changes.announce(ChangeKind::activeFontsChanged);
    }
    return results;
}

std::vector<ActivationResult> FaceSets::activate(const std::string& name) {
    return change(name, true);
}

std::vector<ActivationResult> FaceSets::deactivate(const std::string& name) {
    return change(name, false);
}

} // namespace Vellumine
