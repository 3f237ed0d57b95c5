#pragma once

#include "fontmanager/Catalog.h"
#include "fontmanager/FaceFiles.h"
#include "fontmanager/FaceReader.h"

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace Vellumine {

struct ActivationResult {
    enum class Outcome { changed, unchanged, failed };
    Outcome outcome = Outcome::failed;
    std::string message;

    bool succeeded() const { return outcome != Outcome::failed; }
};

struct RemovalResult {
    bool removed = false;
    bool wasActive = false; // on this workstation
    std::string message;
};

// Who asks for an activation. By default, a user: that also turns an automatic activation
// into a wanted one, which `deactivate --auto` then leaves alone.
struct ActivationOrigin {
    // Non-empty: vellumine activates the face on its own for this application.
    std::string autoFor;
    // Whether an already active automatic face becomes a wanted one.
    bool claims = true;
};

// Makes faces available to fontconfig by linking their files into the activation folder,
// and takes them away again. It only ever removes links it recorded as its own and that
// still point where they pointed when made; every other file there is left alone.
//
// Each activation and deactivation is one write transaction of the catalog that also
// covers its links on disk, so that two processes changing faces of one collection file
// (which share a link) cannot leave a face recorded active without its link.
class Activation {
public:
    // A library that holds the bytes links from the workstation's cache (`cacheFolder`,
    // empty: FaceFiles' default).
    Activation(Catalog& catalog, std::filesystem::path folder,
               std::filesystem::path cacheFolder = {});

    // Activating an active face changes nothing (but its origin, see ActivationOrigin).
    ActivationResult activate(std::int64_t faceId, const ActivationOrigin& origin = {});
    // Activates the faces in one write transaction (their files fetched and read before
    // it), a result per face in order. `recordAlso` runs in that transaction for each face
    // that was activated, for what the caller records with it.
    std::vector<ActivationResult>
    activateAll(const std::vector<std::int64_t>& faceIds, const ActivationOrigin& origin,
                const std::function<void(std::int64_t)>& recordAlso = {});
    ActivationResult deactivate(std::int64_t faceId);
    // Removes the face from the library, and its link here once the removal is committed
    // (a refused removal leaves the face active).
    RemovalResult remove(std::int64_t faceId);

    // Whether the recorded link is still there and points to the recorded target.
    static bool isIntact(const LinkRecord& link);
    // "<id>-<file name>", shortened inside the stem where it would pass the longest name a
    // folder entry may have.
    static std::string linkName(std::int64_t id, const std::filesystem::path& file);

    // Where active faces are linked: fontconfig lists these faces as vellumine's own.
    const std::filesystem::path& linkFolder() const { return folder; }

private:
    ActivationResult link(std::int64_t faceId, const ActivationOrigin& origin);
    bool shareCollectionLink(const FaceRecord& face, const std::string& autoFor);
    void linkMetrics(const FaceRecord& face, LinkRecord& record);
    // Whether the face's file still holds that face; the file may have been replaced since
    // it was added.
    bool stillHolds(const FaceRecord& face, std::string& problem);

    Catalog& catalog;
    std::filesystem::path folder;
    FaceFiles files;
    FaceReader reader;
};

} // namespace Vellumine
