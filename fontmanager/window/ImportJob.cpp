#include "fontmanager/window/ImportJob.h"

#include "fontmanager/FaceReader.h"
#include "fontmanager/OpenCatalog.h"

#include <algorithm>

namespace Vellumine::Window {

namespace {

// Files per catalog transaction: small enough for steady progress, large enough that a
// folder of thousands is not thousands of transactions.
constexpr std::size_t filesPerStep = 25;

} // namespace

ImportJob::ImportJob(LibraryLocation library, std::vector<std::filesystem::path> paths,
                     QObject* parent)
    : QThread(parent), library(std::move(library)), paths(std::move(paths)) {}

std::vector<std::filesystem::path>
ImportJob::fontFiles(const std::vector<std::filesystem::path>& paths) {
    std::vector<std::filesystem::path> files;
    for (const auto& path : paths) {
        std::error_code error;
        if (!std::filesystem::is_directory(path, error)) {
            files.push_back(path); // the importer reports what it cannot use
            continue;
        }
        const auto options = std::filesystem::directory_options::skip_permission_denied;
        std::vector<std::filesystem::path> found;
        for (std::filesystem::recursive_directory_iterator entry(path, options, error), end;
             !error && entry != end; entry.increment(error)) {
            if (LibraryImporter::hasFontExtension(entry->path())) {
                found.push_back(entry->path());
            }
        }
        std::sort(found.begin(), found.end());
        files.insert(files.end(), found.begin(), found.end());
    }
    return files;
}

void ImportJob::run() {
    try {
        const auto files = fontFiles(paths);
        const auto catalog = openCatalog(library);
        FaceReader reader;
        LibraryImporter importer(*catalog, reader);
        const int count = static_cast<int>(files.size());
        emit progress(0, count);
        for (std::size_t start = 0; start < files.size(); start += filesPerStep) {
            const auto end = std::min(files.size(), start + filesPerStep);
            const ImportReport step = importer.add(
                std::vector<std::filesystem::path>(files.begin() + start, files.begin() + end));
            total.facesAdded += step.facesAdded;
            total.facesKnown += step.facesKnown;
            total.filesSkipped += step.filesSkipped;
            total.missingPaths = total.missingPaths || step.missingPaths;
            total.messages.insert(total.messages.end(), step.messages.begin(), step.messages.end());
            emit progress(static_cast<int>(end), count);
        }
    } catch (const std::exception& error) {
        total.messages.push_back(std::string("stopped: ") + error.what());
        total.missingPaths = true;
    }
}

QString ImportJob::summary() const {
    return QStringLiteral("%1 face(s) added, %2 already known, %3 file(s) skipped")
        .arg(total.facesAdded)
        .arg(total.facesKnown)
        .arg(total.filesSkipped);
}

} // namespace Vellumine::Window
