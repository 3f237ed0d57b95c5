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
// extensions only). Damaged files and anything but regular files (FIFOs, devices, sockets)
// are reported in the report and skipped. Every file is read before the catalog's write
// transaction begins, so that a slow file never holds the catalog's lock.
class LibraryImporter {
public:
    LibraryImporter(Catalog& catalog, const FaceReader& reader);

    ImportReport add(const std::vector<std::filesystem::path>& paths);

    // The Type 1 metrics file beside an outline file (same stem, .afm or .pfm), or empty.
    static std::filesystem::path metricsFileFor(const std::filesystem::path& outlines);
    static bool hasFontExtension(const std::filesystem::path& file);

private:
    struct ReadFile {
        std::filesystem::path file;
        std::filesystem::path metrics;
        std::vector<FaceDescription> faces;
    };

    void readFolder(const std::filesystem::path& folder, ImportReport& report,
                    std::vector<ReadFile>& files);
    void readFile(const std::filesystem::path& file, ImportReport& report,
                  std::vector<ReadFile>& files);
    void record(const std::vector<ReadFile>& files, ImportReport& report);

    Catalog& catalog;
    const FaceReader& reader;
};

} // namespace Vellumine
