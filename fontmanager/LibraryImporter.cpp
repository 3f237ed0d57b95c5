#include "fontmanager/LibraryImporter.h"

#include "foundation/Logger.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <system_error>

namespace Vellumine {

namespace {

std::string lowercase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

} // namespace

LibraryImporter::LibraryImporter(Catalog& catalog, const FaceReader& reader)
    : catalog(catalog), reader(reader) {}

bool LibraryImporter::hasFontExtension(const std::filesystem::path& file) {
    static const std::array<std::string, 7> extensions = {".pfb", ".pfa", ".t1", ".ttf",
                                                          ".otf", ".ttc", ".otc"};
    const std::string extension = lowercase(file.extension().string());
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
            report.messages.push_back(path.string() + ": no such file or folder");
        } else if (std::filesystem::is_directory(status)) {
            readFolder(path, report, files);
        } else {
            readFile(path, report, files);
        }
    }
    record(files, report);
    return report;
}

void LibraryImporter::readFolder(const std::filesystem::path& folder, ImportReport& report,
                                 std::vector<ReadFile>& files) {
    std::error_code error;
    std::filesystem::recursive_directory_iterator walk(
        folder, std::filesystem::directory_options::skip_permission_denied, error);
    std::vector<std::filesystem::path> found;
    for (; !error && walk != std::filesystem::recursive_directory_iterator();
         walk.increment(error)) {
        std::error_code typeError;
        if (walk->is_regular_file(typeError) && hasFontExtension(walk->path())) {
            found.push_back(walk->path());
        }
    }
    if (error) {
        report.messages.push_back(folder.string() + ": cannot read folder (" + error.message() +
                                  ")");
        report.missingPaths = true;
    }
    std::sort(found.begin(), found.end()); // the same folder gives the same identifiers
    for (const auto& file : found) {
        readFile(file, report, files);
    }
}

void LibraryImporter::readFile(const std::filesystem::path& file, ImportReport& report,
                               std::vector<ReadFile>& files) {
    std::error_code error;
    const auto canonical = std::filesystem::canonical(file, error);
    if (error) {
        report.filesSkipped++;
        report.messages.push_back("skipped " + file.string() + ": " + error.message());
        return;
    }
    // Opening a FIFO would wait for a writer, a device would be read without end.
    if (!std::filesystem::is_regular_file(canonical, error)) {
        report.filesSkipped++;
        report.messages.push_back("skipped " + file.string() + ": not a regular file");
        return;
    }
    FontFileReading reading = reader.read(canonical);
    for (const auto& problem : reading.problems) {
        report.messages.push_back("skipped " + canonical.string() + ": " + problem);
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
    report.messages.insert(report.messages.end(), messages.begin(), messages.end());
}

} // namespace Vellumine
