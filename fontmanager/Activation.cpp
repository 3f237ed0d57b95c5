#include "fontmanager/Activation.h"

#include "foundation/Logger.h"

#include <system_error>

namespace Vellumine {

namespace {

using Outcome = ActivationResult::Outcome;

bool pointsTo(const std::filesystem::path& link, const std::filesystem::path& target) {
    std::error_code error;
    return std::filesystem::is_symlink(std::filesystem::symlink_status(link, error)) &&
           std::filesystem::read_symlink(link, error) == target && !error;
}

// Creates the link, or adopts one that already points to the same target (left behind by a
// catalog that was reset). Any other file under that name is not ours to replace.
bool makeLink(const std::filesystem::path& target, const std::filesystem::path& link,
              std::string& problem) {
    if (pointsTo(link, target)) {
        return true;
    }
    std::error_code error;
    std::filesystem::create_symlink(target, link, error);
    if (error) {
        problem = "cannot link " + link.string() + ": " + error.message();
        return false;
    }
    return true;
}

void removeOwnLink(const std::filesystem::path& link, const std::filesystem::path& target) {
    if (link.empty()) {
        return;
    }
    if (!pointsTo(link, target)) {
        Logger::log("vellumine-activation",
                    "left " + link.string() + " alone: it no longer points to " + target.string());
        return;
    }
    std::error_code error;
    std::filesystem::remove(link, error);
}

std::string linkName(std::int64_t id, const std::filesystem::path& file) {
    return std::to_string(id) + "-" + file.filename().string();
}

} // namespace

Activation::Activation(Catalog& catalog, std::filesystem::path folder)
    : catalog(catalog), folder(std::move(folder)) {}

bool Activation::isIntact(const LinkRecord& link) {
    return pointsTo(link.link, link.target);
}

ActivationResult Activation::activate(std::int64_t faceId) {
    const auto face = catalog.face(faceId);
    if (!face) {
        return {Outcome::failed, "no face with container id " + std::to_string(faceId)};
    }
    return activate(*face);
}

ActivationResult Activation::activate(const FaceRecord& face) {
    const std::string name = std::to_string(face.id) + " " + face.postScriptName;
    if (const auto existing = catalog.link(face.id)) {
        if (isIntact(*existing)) {
            return {Outcome::unchanged, name + " is already active"};
        }
        catalog.removeLink(face.id); // someone removed or replaced our link: make it anew
    }
    std::error_code error;
    if (!std::filesystem::is_regular_file(face.file, error)) {
        return {Outcome::failed, name + ": font file " + face.file.string() + " is gone"};
    }
    if (shareCollectionLink(face)) {
        return {Outcome::changed, name + " activated (collection already linked)"};
    }
    std::filesystem::create_directories(folder, error);
    LinkRecord record{face.id, folder / linkName(face.id, face.file), face.file, {}, {}};
    std::string problem;
    if (!makeLink(record.target, record.link, problem)) {
        return {Outcome::failed, name + ": " + problem};
    }
    linkMetrics(face, record);
    catalog.recordLink(record);
    Logger::log("vellumine-activation", "linked " + record.link.string());
    return {Outcome::changed, name + " activated"};
}

// fontconfig sees every face of a collection file through one link, so a second face of an
// already linked collection shares that link instead of adding a duplicate.
bool Activation::shareCollectionLink(const FaceRecord& face) {
    for (const auto& sibling : catalog.facesOfFile(face.file)) {
        if (sibling.id == face.id || !sibling.active) {
            continue;
        }
        const auto link = catalog.link(sibling.id);
        if (link && isIntact(*link)) {
            catalog.recordLink({face.id, link->link, link->target, {}, {}});
            return true;
        }
    }
    return false;
}

void Activation::linkMetrics(const FaceRecord& face, LinkRecord& record) {
    std::error_code error;
    if (face.metricsFile.empty() || !std::filesystem::is_regular_file(face.metricsFile, error)) {
        return;
    }
    const auto link = folder / linkName(face.id, face.metricsFile);
    std::string problem;
    if (makeLink(face.metricsFile, link, problem)) {
        record.metricsLink = link;
        record.metricsTarget = face.metricsFile;
    } else {
        Logger::log("vellumine-activation", problem);
    }
}

ActivationResult Activation::deactivate(std::int64_t faceId) {
    const auto face = catalog.face(faceId);
    if (!face) {
        return {Outcome::failed, "no face with container id " + std::to_string(faceId)};
    }
    const std::string name = std::to_string(face->id) + " " + face->postScriptName;
    const auto link = catalog.link(faceId);
    if (!link) {
        return {Outcome::unchanged, name + " is not active"};
    }
    const bool shared = catalog.linkUsers(link->link) > 1;
    catalog.removeLink(faceId);
    if (!shared) {
        removeOwnLink(link->link, link->target);
        removeOwnLink(link->metricsLink, link->metricsTarget);
    }
    return {Outcome::changed, name + " deactivated"};
}

} // namespace Vellumine
