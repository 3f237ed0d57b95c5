#pragma once

#include "fontmanager/Activation.h"
#include "fontmanager/Catalog.h"
#include "fontmanager/LibraryChanges.h"

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace Vellumine {

// Named collections of faces ("Brochure 2026", "Corporate"), activated and deactivated
// together, shared by the command line and the window. A set holds faces, not files: its
// faces are activated as the user's own, like `vellumine activate`.
class FaceSets {
public:
    // A set name is refused when empty, longer than 200 bytes or holding control
    // characters: it is shown in lists and on the command line.
    class BadName : public std::invalid_argument {
    public:
        using std::invalid_argument::invalid_argument;
    };

    FaceSets(Catalog& catalog, Activation& activation, LibraryChanges& changes);

    std::vector<FaceSet> all();
    std::int64_t create(const std::string& name);
    bool remove(const std::string& name);
    // Faces of the set, in identifier order; throws std::runtime_error for an unknown set.
    std::vector<FaceRecord> faces(const std::string& name);
    // Adds or removes faces by container identifier; unknown identifiers are refused
    // before anything changes (std::runtime_error).
    void add(const std::string& name, const std::vector<std::int64_t>& faceIds);
    void take(const std::string& name, const std::vector<std::int64_t>& faceIds);

    // Activates (or deactivates) every face of the set and announces the change once.
    std::vector<ActivationResult> activate(const std::string& name);
    std::vector<ActivationResult> deactivate(const std::string& name);

    static void checkName(const std::string& name);

private:
    std::int64_t existing(const std::string& name);
    std::vector<ActivationResult> change(const std::string& name, bool activate);

    Catalog& catalog;
    Activation& activation;
    LibraryChanges& changes;
};

} // namespace Vellumine
