#include "fontmanager/LibraryImporter.h"

#include "foundation/AsciiCase.h"
#include "foundation/Logger.h"

#include <algorithm>
#include <array>
#include <system_error>

namespace Vellumine {

LibraryImporter::LibraryImporter(Catalog& catalog, const FaceReader& reader,
                                 std::size_t filesPerTransaction)
    : catalog(catalog), reader(reader),
      filesPerTransaction(std::max<std::size_t>(1, filesPerTransaction)) {}

bool LibraryImporter::hasFontExtension(const std::filesystem::path& file) {
    static const std::array<std::string, 7> extensions = {".pfb", ".pfa", ".t1", ".ttf",
                                                          ".otf", ".ttc", ".otc"};
    const std::string extension = AsciiCase::lowered(file.extension().string());
    return std::find(extensions.begin(), extensions.end(), extension) != extensions.end();
}

std::filesystem::path LibraryImporter::metricsFileFor(const std::filesystem::path& outlines) {
    for (const char* extension : {".afm", ".AFM", ".pfm", ".PFM"}) {
        std::filesystem::path candidate = outlines;
        candidate.replace_extension(extension);
        std::error_code error;
        if (std::filesystem::is_regular_file(candidate, error)) {
            return candidate;
        }
    }
    return {};
}

ImportReport LibraryImporter::add(const std::vector<std::filesystem::path>& paths) {
    ImportReport report;
    std::vector<ReadFile> files;
    for (const auto& path : paths) {
        std::error_code error;
        const auto status = std::filesystem::status(path, error);
        if (error || !std::filesystem::exists(status)) {
            report.missingPaths = true;
            tell(report, MessageKind::problem, path.string() + ": no such file or folder");
        } else if (std::filesystem::is_directory(status)) {
            readFolder(path, report, files);
        } else {
            readFile(path, report, files);
            flush(files, report, false);
        }
    }
    flush(files, report, true);
    return report;
}

void LibraryImporter::tell(ImportReport& report, MessageKind kind, std::string message) {
    if (messageSink) {
        messageSink(kind, message);
    } else {
        report.messages.push_back(std::move(message));
    }
}

void LibraryImporter::flush(std::vector<ReadFile>& files, ImportReport& report, bool force) {
    if (files.empty() || (!force && files.size() < filesPerTransaction)) {
        return;
    }
    record(files, report);
    files.clear();
}

void LibraryImporter::readFolder(const std::filesystem::path& folder, ImportReport& report,
                                 std::vector<ReadFile>& files) {
    // One folder's entries at a time, in name order: memory follows the largest folder,
    // not the whole tree.
    std::error_code error;
    std::vector<std::filesystem::path> fontFiles;
    std::vector<std::filesystem::path> subfolders;
    for (std::filesystem::directory_iterator
             entries(folder, std::filesystem::directory_options::skip_permission_denied, error),
         end;
         !error && entries != end; entries.increment(error)) {
        std::error_code typeError;
        if (entries->is_directory(typeError) && !entries->is_symlink(typeError)) {
            subfolders.push_back(entries->path());
        } else if (entries->is_regular_file(typeError) && hasFontExtension(entries->path())) {
            fontFiles.push_back(entries->path());
        }
    }
    if (error) {
        tell(report, MessageKind::problem,
             folder.string() + ": cannot read folder (" + error.message() + ")");
        report.missingPaths = true;
    }
    std::sort(fontFiles.begin(), fontFiles.end());
    std::sort(subfolders.begin(), subfolders.end());
    for (const auto& file : fontFiles) {
        readFile(file, report, files);
        flush(files, report, false);
    }
    for (const auto& subfolder : subfolders) {
        readFolder(subfolder, report, files);
    }
}

void LibraryImporter::readFile(const std::filesystem::path& file, ImportReport& report,
                               std::vector<ReadFile>& files) {
    std::error_code error;
    const auto canonical = std::filesystem::canonical(file, error);
    if (error) {
        report.filesSkipped++;
        tell(report, MessageKind::problem, "skipped " + file.string() + ": " + error.message());
        return;
    }
    // Opening a FIFO would wait for a writer, a device would be read without end.
    if (!std::filesystem::is_regular_file(canonical, error)) {
        report.filesSkipped++;
        tell(report, MessageKind::problem, "skipped " + file.string() + ": not a regular file");
        return;
    }
    FontFileReading reading = reader.read(canonical);
    for (const auto& problem : reading.problems) {
        tell(report, MessageKind::problem, "skipped " + canonical.string() + ": " + problem);
        Logger::log("vellumine-add", canonical.string() + ": " + problem);
    }
    if (reading.faces.empty()) {
        report.filesSkipped++;
        return;
    }
    const auto metrics = reading.faces.front().type == FaceType::type1 ? metricsFileFor(canonical)
                                                                       : std::filesystem::path();
    files.push_back({canonical, metrics, std::move(reading.faces)});
}

void LibraryImporter::record(const std::vector<ReadFile>& files, ImportReport& report) {
    std::vector<std::string> messages;
    ImportReport counts;
    catalog.write([&] {
        messages.clear(); // tried again after a busy catalog
        counts = {};
        for (const auto& file : files) {
            for (const auto& face : file.faces) {
                const AddedFace added = catalog.addFace(file.file, file.metrics, face);
                (added.isNew ? counts.facesAdded : counts.facesKnown)++;
                messages.push_back(std::string(added.isNew ? "added " : "known ") +
                                   std::to_string(added.id) + " " + face.postScriptName + " (" +
                                   wireText(face.type) + ") " + file.file.string());
            }
        }
    });
    report.facesAdded += counts.facesAdded;
    report.facesKnown += counts.facesKnown;
    for (auto& message : messages) {
        tell(report, MessageKind::progress, std::move(message));
    }
}

} // namespace Vellumine
