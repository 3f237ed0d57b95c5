#pragma once

#include "fontmanager/Catalog.h"
#include "fontmanager/FaceReader.h"

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace Vellumine {

struct ImportReport {
    int facesAdded = 0;
    int facesKnown = 0; // already in the library; refreshed, not duplicated
    int filesSkipped = 0;
    bool missingPaths = false; // a path named by the user does not exist or cannot be read
    // One line per face added or known, file skipped or path missing; empty when the
    // importer hands them to a message sink instead.
    std::vector<std::string> messages;
};

// Brings font files into the catalog: files as named, folders recursively (font file
// extensions only, each folder in name order, so that the same folder gives the same
// identifiers). Damaged files and anything but regular files (FIFOs, devices, sockets) are
// reported and skipped.
//
// Files are read and recorded in batches (a thousand files by default): every file of a batch is
// read before its write transaction begins, so that a slow file never holds the catalog's
// lock, and neither the faces read nor the messages pile up, so that adding a library of
// 100,000 faces takes as much memory as adding a thousand. An add that is stopped half-way
// leaves whole batches behind; adding again completes it, since a face added again keeps its
// identifier.
class LibraryImporter {
public:
    enum class MessageKind { progress, problem };
    using MessageSink = std::function<void(MessageKind, const std::string&)>;

    LibraryImporter(Catalog& catalog, const FaceReader& reader,
                    std::size_t filesPerTransaction = 1000);
    // Messages go to `sink` as they come instead of into the report.
    void sendMessagesTo(MessageSink sink) { messageSink = std::move(sink); }

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
    // Records the batch once it is full (or, with `force`, whatever it holds).
    void flush(std::vector<ReadFile>& files, ImportReport& report, bool force);
    void record(const std::vector<ReadFile>& files, ImportReport& report);
    void tell(ImportReport& report, MessageKind kind, std::string message);

    Catalog& catalog;
    const FaceReader& reader;
    std::size_t filesPerTransaction;
    MessageSink messageSink;
};

} // namespace Vellumine
