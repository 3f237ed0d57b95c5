#pragma once

#include "fontmanager/Catalog.h"

#include <filesystem>
#include <string>

namespace Vellumine {

struct ActivationResult {
    enum class Outcome { changed, unchanged, failed };
    Outcome outcome = Outcome::failed;
    std::string message;

    bool succeeded() const { return outcome != Outcome::failed; }
};

// Makes faces available to fontconfig by linking their files into the activation folder,
// and takes them away again. It only ever removes links it recorded as its own and that
// still point where they pointed when made; every other file there is left alone.
class Activation {
public:
    Activation(Catalog& catalog, std::filesystem::path folder);

    ActivationResult activate(std::int64_t faceId);
    ActivationResult deactivate(std::int64_t faceId);

    // Whether the recorded link is still there and points to the recorded target.
    static bool isIntact(const LinkRecord& link);

private:
    ActivationResult activate(const FaceRecord& face);
    bool shareCollectionLink(const FaceRecord& face);
    void linkMetrics(const FaceRecord& face, LinkRecord& record);

    Catalog& catalog;
    std::filesystem::path folder;
};

} // namespace Vellumine
