#include "fontmanager/Activation.h"

#include "fontmanager/FileStamp.h"
#include "foundation/Logger.h"

#include <algorithm>
#include <system_error>

namespace Vellumine {

namespace {

using Outcome = ActivationResult::Outcome;

// The longest name of a folder entry on Linux file systems.
constexpr std::size_t maximumNameBytes = 255;

bool pointsTo(const std::filesystem::path& link, const std::filesystem::path& target) {
    std::error_code error;
    return std::filesystem::is_symlink(std::filesystem::symlink_status(link, error)) &&
           std::filesystem::read_symlink(link, error) == target && !error;
}

// Creates the link, or adopts one that already points to the same target (left behind by a
// catalog that was reset, or made by a process that was killed before it recorded it). Any
// other file under that name is not ours to replace.
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

// Cuts `text` to at most `bytes` without splitting a UTF-8 sequence.
std::string cutAtCharacter(const std::string& text, std::size_t bytes) {
    if (text.size() <= bytes) {
        return text;
    }
    while (bytes > 0 && (static_cast<unsigned char>(text[bytes]) & 0xC0u) == 0x80u) {
        --bytes;
    }
    return text.substr(0, bytes);
}

std::string faceName(const FaceRecord& face) {
    return std::to_string(face.id) + " " + face.postScriptName;
}

} // namespace

Activation::Activation(Catalog& catalog, std::filesystem::path folder,
                       std::filesystem::path cacheFolder)
    : catalog(catalog), folder(std::move(folder)), files(catalog, std::move(cacheFolder)) {}

bool Activation::isIntact(const LinkRecord& link) {
    return pointsTo(link.link, link.target);
}

std::string Activation::linkName(std::int64_t id, const std::filesystem::path& file) {
    const std::string prefix = std::to_string(id) + "-";
    const std::string name = file.filename().string();
    if (prefix.size() + name.size() <= maximumNameBytes) {
        return prefix + name;
    }
    // Keep the extension: fontconfig and people both go by it.
    std::string extension = file.extension().string();
    if (prefix.size() + extension.size() > maximumNameBytes / 2) {
        extension.clear();
    }
    const std::string stem = name.substr(0, name.size() - extension.size());
    return prefix + cutAtCharacter(stem, maximumNameBytes - prefix.size() - extension.size()) +
           extension;
}

bool Activation::stillHolds(const FaceRecord& face, std::string& problem) {
    if (!files.fetch(face, problem)) {
        return false;
    }
    const std::filesystem::path file = files.fontFile(face);
    std::error_code error;
    if (!std::filesystem::exists(file, error)) {
        problem = "font file " + file.string() + " is gone";
        return false;
    }
    if (!std::filesystem::is_regular_file(file, error)) {
        problem = file.string() + " is no longer a regular file";
        return false;
    }
    // Untouched since it was added: it holds what it held. A request for fifty faces then
    // reads none of them.
    if (!face.fileStamp.empty() && fileStamp(file) == face.fileStamp) {
        return true;
    }
    // Else the one face it was added as: a request activating fifty faces reads fifty
    // faces, not every face of fifty files twice.
    std::string unreadable;
    const auto description = reader.readFace(file, face.faceIndex, unreadable);
    const bool holds = description && description->postScriptName == face.postScriptName &&
                       description->type == face.type;
    if (!holds) {
        problem = file.string() + " no longer holds this face (changed since it was " +
                  "added; add it again)";
    }
    return holds;
}

ActivationResult Activation::activate(std::int64_t faceId, const ActivationOrigin& origin) {
    return activateAll({faceId}, origin).front();
}

std::vector<ActivationResult>
Activation::activateAll(const std::vector<std::int64_t>& faceIds, const ActivationOrigin& origin,
                        const std::function<void(std::int64_t)>& recordAlso) {
    std::vector<ActivationResult> results(faceIds.size());
    std::vector<bool> ready(faceIds.size(), false);
    // The files are fetched and read before the write transaction, so that a slow or
    // strange file never holds the catalog's lock.
    for (std::size_t i = 0; i < faceIds.size(); ++i) {
        const auto face = catalog.face(faceIds[i]);
        if (!face) {
            results[i] = {Outcome::failed,
                          "no face with container id " + std::to_string(faceIds[i])};
            continue;
        }
        std::string problem;
        // An active face may be linked anew (its link was removed): from a verified copy too.
        if (face->active ? !files.fetch(*face, problem) : !stillHolds(*face, problem)) {
            results[i] = {Outcome::failed, faceName(*face) + ": " + problem};
            continue;
        }
        ready[i] = true;
    }
    if (std::find(ready.begin(), ready.end(), true) == ready.end()) {
        return results;
    }
    // One transaction for all: a request for fifty missing fonts commits once, not fifty
    // times.
    catalog.write([&] {
        for (std::size_t i = 0; i < faceIds.size(); ++i) {
            if (!ready[i]) {
                continue;
            }
            results[i] = link(faceIds[i], origin);
            if (results[i].outcome == Outcome::changed && recordAlso) {
                recordAlso(faceIds[i]);
            }
        }
    });
    return results;
}

ActivationResult Activation::link(std::int64_t faceId, const ActivationOrigin& origin) {
    const std::string& autoFor = origin.autoFor;
    const auto face = catalog.face(faceId);
    if (!face) {
        return {Outcome::failed, "no face with container id " + std::to_string(faceId)};
    }
    const std::string name = faceName(*face);
    if (const auto existing = catalog.link(face->id)) {
        if (isIntact(*existing)) {
            if (origin.claims && autoFor.empty() && !existing->autoFor.empty()) {
                catalog.claimLink(face->id);
            }
            return {Outcome::unchanged, name + " is already active"};
        }
        catalog.removeLink(face->id); // someone removed or replaced our link: make it anew
    }
    const std::filesystem::path file = files.fontFile(*face);
    std::error_code error;
    if (!std::filesystem::is_regular_file(file, error)) {
        return {Outcome::failed, name + ": font file " + file.string() + " is gone"};
    }
    if (shareCollectionLink(*face, autoFor)) {
        return {Outcome::changed, name + " activated (collection already linked)"};
    }
    std::filesystem::create_directories(folder, error);
    // Named after the file as added, so that the folder reads well and keeps the extension.
    LinkRecord record{face->id, folder / linkName(face->id, face->file), file, {}, {}, autoFor};
    std::string problem;
    if (!makeLink(record.target, record.link, problem)) {
        return {Outcome::failed, name + ": " + problem};
    }
    linkMetrics(*face, record);
    catalog.recordLink(record);
    Logger::log("vellumine-activation",
                "linked " + record.link.string() + (autoFor.empty() ? "" : " for " + autoFor));
    return {Outcome::changed, name + " activated"};
}

// fontconfig sees every face of a collection file through one link, so a second face of an
// already linked collection shares that link instead of adding a duplicate.
bool Activation::shareCollectionLink(const FaceRecord& face, const std::string& autoFor) {
    for (const auto& sibling : catalog.facesOfFile(face.file)) {
        if (sibling.id == face.id || !sibling.active) {
            continue;
        }
        const auto link = catalog.link(sibling.id);
        if (link && isIntact(*link)) {
            catalog.recordLink({face.id, link->link, link->target, {}, {}, autoFor});
            return true;
        }
    }
    return false;
}

void Activation::linkMetrics(const FaceRecord& face, LinkRecord& record) {
    const std::filesystem::path metrics = files.metricsFile(face);
    std::error_code error;
    if (metrics.empty() || !std::filesystem::is_regular_file(metrics, error)) {
        return;
    }
    const auto link = folder / linkName(face.id, face.metricsFile);
    std::string problem;
    if (makeLink(metrics, link, problem)) {
        record.metricsLink = link;
        record.metricsTarget = metrics;
    } else {
        Logger::log("vellumine-activation", problem);
    }
}

ActivationResult Activation::deactivate(std::int64_t faceId) {
    ActivationResult result;
    catalog.write([&] {
        const auto face = catalog.face(faceId);
        if (!face) {
            result = {Outcome::failed, "no face with container id " + std::to_string(faceId)};
            return;
        }
        const std::string name = faceName(*face);
        const auto link = catalog.link(faceId);
        if (!link) {
            result = {Outcome::unchanged, name + " is not active"};
            return;
        }
        const bool shared = catalog.linkUsers(link->link) > 1;
        catalog.removeLink(faceId);
        if (!shared) {
            removeOwnLink(link->link, link->target);
            removeOwnLink(link->metricsLink, link->metricsTarget);
        }
        result = {Outcome::changed, name + " deactivated"};
    });
    return result;
}

RemovalResult Activation::remove(std::int64_t faceId) {
    RemovalResult result;
    std::optional<LinkRecord> link;
    bool shared = false;
    catalog.write([&] {
        result = {};
        const auto face = catalog.face(faceId);
        if (!face) {
            result.message = "no face with container id " + std::to_string(faceId);
            return;
        }
        link = catalog.link(faceId);
        shared = link && catalog.linkUsers(link->link) > 1;
        catalog.removeFace(faceId);
        result = {true, link.has_value(), faceName(*face) + " removed from the library"};
    });
    if (result.removed && link && !shared) {
        removeOwnLink(link->link, link->target);
        removeOwnLink(link->metricsLink, link->metricsTarget);
    }
    return result;
}

} // namespace Vellumine
