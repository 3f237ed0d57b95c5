#include "fontmanager/LibraryCheck.h"

#include "fontmanager/Activation.h"
#include "fontmanager/ContainerID.h"

#include <optional>
#include <set>
#include <system_error>

namespace Vellumine {

namespace {

std::filesystem::path linkTarget(const std::filesystem::path& link) {
    std::error_code error;
    if (!std::filesystem::is_symlink(std::filesystem::symlink_status(link, error))) {
        return {};
    }
    auto target = std::filesystem::read_symlink(link, error);
    return error ? std::filesystem::path() : target;
}

// Whether `link` is one vellumine made for a face of the catalog and then lost track of.
bool isOwnLink(Catalog& catalog, const std::filesystem::path& link) {
    const std::filesystem::path target = linkTarget(link);
    const std::string name = link.filename().string();
    const auto dash = name.find('-');
    const auto id =
        dash == std::string::npos ? std::nullopt : parseContainerID(name.substr(0, dash));
    if (target.empty() || !id) {
        return false;
    }
    const auto face = catalog.face(*id);
    if (!face) {
        // Removed from a shared library by another workstation: a link into this
        // workstation's cache is still ours.
        return target.parent_path() == FaceFiles::defaultCacheFolder();
    }
    FaceFiles files(catalog);
    return (target == files.fontFile(*face) && name == Activation::linkName(*id, face->file)) ||
           (target == files.metricsFile(*face) &&
            name == Activation::linkName(*id, face->metricsFile));
}

void checkRecordedLinks(Catalog& catalog, bool repair, LibraryCheckReport& report) {
    for (const auto& link : catalog.allLinks()) {
        if (Activation::isIntact(link)) {
            continue;
        }
        report.problems.push_back("face " + std::to_string(link.faceId) +
                                  " is recorded active, but " + link.link.string() +
                                  " is gone or points elsewhere");
        if (repair) {
            catalog.removeLink(link.faceId);
            report.repairs.push_back("face " + std::to_string(link.faceId) + " recorded inactive");
        }
    }
}

void checkFolder(Catalog& catalog, const std::filesystem::path& folder, bool repair,
                 LibraryCheckReport& report) {
    std::set<std::filesystem::path> recorded;
    for (const auto& link : catalog.allLinks()) {
        recorded.insert(link.link);
        recorded.insert(link.metricsLink);
    }
    std::error_code error;
    for (std::filesystem::directory_iterator entries(folder, error), end; !error && entries != end;
         entries.increment(error)) {
        const auto path = entries->path();
        if (recorded.count(path) != 0 || !isOwnLink(catalog, path)) {
            continue;
        }
        report.problems.push_back(path.string() + " is a link of vellumine that nothing records");
        if (repair) {
            std::error_code removal;
            std::filesystem::remove(path, removal);
            report.repairs.push_back(removal ? "cannot remove " + path.string() + ": " +
                                                   removal.message()
                                             : "removed " + path.string());
        }
    }
}

void checkLinks(Catalog& catalog, const std::filesystem::path& folder, bool repair,
                LibraryCheckReport& report) {
    checkRecordedLinks(catalog, repair, report);
    checkFolder(catalog, folder, repair, report);
}

void check(Catalog& catalog, const std::filesystem::path& folder, bool repair,
           LibraryCheckReport& report) {
    for (const auto& problem : catalog.integrityProblems()) {
        report.problems.push_back(problem);
    }
    for (const auto& [id, type] : catalog.facesOfUnknownType()) {
        report.problems.push_back("face " + std::to_string(id) + " has the unknown type '" + type +
                                  "' and is left out of listings");
    }
    checkLinks(catalog, folder, repair, report);
}

} // namespace

LibraryCheckReport repairLinks(Catalog& catalog, const std::filesystem::path& activationFolder) {
    LibraryCheckReport report;
    if (catalog.isReadOnly()) {
        return report;
    }
    catalog.write([&] {
        report = {};
        checkLinks(catalog, activationFolder, true, report);
    });
    return report;
}

LibraryCheckReport checkLibrary(Catalog& catalog, const std::filesystem::path& activationFolder,
                                bool repair) {
    LibraryCheckReport report;
    if (catalog.isReadOnly()) {
        catalog.read([&] { check(catalog, activationFolder, false, report); });
        return report;
    }
    catalog.write([&] {
        report = {};
        check(catalog, activationFolder, repair, report);
    });
    return report;
}

} // namespace Vellumine
