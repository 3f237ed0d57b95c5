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
    SqliteTransaction transaction(catalog.database());
    for (const auto& path : paths) {
        std::error_code error;
        const auto status = std::filesystem::status(path, error);
        if (error || !std::filesystem::exists(status)) {
            report.missingPaths = true;
            report.messages.push_back(path.string() + ": no such file or folder");
        } else if (std::filesystem::is_directory(status)) {
            addFolder(path, report);
        } else {
            addFile(path, report);
        }
    }
    transaction.commit();
    return report;
}

void LibraryImporter::addFolder(const std::filesystem::path& folder, ImportReport& report) {
    std::error_code error;
    std::filesystem::recursive_directory_iterator walk(
        folder, std::filesystem::directory_options::skip_permission_denied, error);
    std::vector<std::filesystem::path> files;
    for (; !error && walk != std::filesystem::recursive_directory_iterator();
         walk.increment(error)) {
        std::error_code typeError;
        if (walk->is_regular_file(typeError) && hasFontExtension(walk->path())) {
            files.push_back(walk->path());
        }
    }
    if (error) {
        report.messages.push_back(folder.string() + ": cannot read folder (" + error.message() +
                                  ")");
        report.missingPaths = true;
    }
    std::sort(files.begin(), files.end()); // the same folder gives the same identifiers
    for (const auto& file : files) {
        addFile(file, report);
    }
}

void LibraryImporter::addFile(const std::filesystem::path& file, ImportReport& report) {
    std::error_code error;
    const auto canonical = std::filesystem::canonical(file, error);
    if (error) {
        report.filesSkipped++;
        report.messages.push_back("skipped " + file.string() + ": " + error.message());
        return;
    }
    const FontFileReading reading = reader.read(canonical);
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
    for (const auto& face : reading.faces) {
        const AddedFace added = catalog.addFace(canonical, metrics, face);
        (added.isNew ? report.facesAdded : report.facesKnown)++;
        report.messages.push_back(std::string(added.isNew ? "added " : "known ") +
                                  std::to_string(added.id) + " " + face.postScriptName + " (" +
                                  wireText(face.type) + ") " + canonical.string());
    }
}

} // namespace Vellumine
