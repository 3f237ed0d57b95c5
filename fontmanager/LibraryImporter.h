#pragma once

#include "fontmanager/Catalog.h"
#include "fontmanager/FaceReader.h"

#include <filesystem>
#include <string>
#include <vector>

namespace Vellumine {

struct ImportReport {
    int facesAdded = 0;
    int facesKnown = 0; // already in the library; refreshed, not duplicated
    int filesSkipped = 0;
    bool missingPaths = false; // a path named by the user does not exist or cannot be read
    std::vector<std::string> messages;
};

// Brings font files into the catalog: files as named, folders recursively (font file
// extensions only). Damaged files are reported in the report and skipped.
class LibraryImporter {
public:
    LibraryImporter(Catalog& catalog, const FaceReader& reader);

    ImportReport add(const std::vector<std::filesystem::path>& paths);

    // The Type 1 metrics file beside an outline file (same stem, .afm or .pfm), or empty.
    static std::filesystem::path metricsFileFor(const std::filesystem::path& outlines);
    static bool hasFontExtension(const std::filesystem::path& file);

private:
    void addFolder(const std::filesystem::path& folder, ImportReport& report);
    void addFile(const std::filesystem::path& file, ImportReport& report);

    Catalog& catalog;
    const FaceReader& reader;
};

} // namespace Vellumine
