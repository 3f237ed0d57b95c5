// The commands about the library as a whole: status, remove and grant.
#include "fontmanager/Activation.h"
#include "fontmanager/CliCommands.h"
#include "fontmanager/LibraryChanges.h"
#include "fontmanager/LibraryPaths.h"
#include "fontmanager/LibrarySelection.h"
#include "fontmanager/OpenCatalog.h"
#include "fontmanager/Server.h"
#include "platform/linux/DBusAppEvents.h"

#include <map>

namespace Vellumine {

namespace {

std::string serverState() {
    int status = 0;
    auto bus = Platform::Linux::DBusAppEvents::open("", status);
    if (!bus) {
        return "unknown (cannot connect to the session bus)";
    }
    return bus->hasOwner(serviceBusName) ? "running (" + serviceBusName + " is owned)"
                                         : "not running";
}

void printWindowlessRequests(Catalog& catalog, const std::string& kind, const char* title,
                             std::ostream& out) {
    const auto requests = catalog.windowlessRequests(kind, 20);
    out << title << (requests.empty() ? ": none\n" : ":\n");
    for (const auto& request : requests) {
        out << "  " << formatTime(request.unixTime) << "  " << request.postScriptName
            << (request.type.empty() ? "" : " (" + request.type + ")")
            << (request.containerID.empty() ? "" : " container " + request.containerID)
            << (request.application.empty() ? "" : " from " + request.application) << "\n";
    }
}

void printAutomaticActivations(Catalog& catalog, std::ostream& out) {
    const auto links = catalog.autoActivatedLinks();
    out << "activated automatically" << (links.empty() ? ": none\n" : ":\n");
    std::map<std::int64_t, std::string> askedBy;
    for (const auto& requester : catalog.autoRequesters()) {
        std::string& applications = askedBy[requester.faceId];
        applications += (applications.empty() ? "" : ", ") + field(requester.application);
    }
    for (const auto& link : links) {
        const auto face = catalog.face(link.faceId);
        out << "  " << link.faceId << "\t" << (face ? field(face->postScriptName) : "?") << "\tfor "
            << askedBy[link.faceId] << "\n";
    }
}

// How many workstations use each face: in a shared library, the ground for seat counts.
void printWorkstationCounts(Catalog& catalog, const LibraryLocation& library, std::ostream& out) {
    if (library.kind != LibraryLocation::Kind::postgresql) {
        return;
    }
    const auto uses = catalog.faceUse();
    out << "in use on workstations" << (uses.empty() ? ": none\n" : ":\n");
    for (const auto& use : uses) {
        const auto face = catalog.face(use.faceId);
        out << "  " << use.faceId << "\t" << (face ? field(face->postScriptName) : "?") << "\t"
            << use.workstations << " workstation(s)\n";
    }
}

} // namespace

int statusCommand(const CliArguments& arguments, std::ostream& out, std::ostream& errors) {
    if (!arguments.empty()) {
        errors << "vellumine status: takes no arguments\n";
        return cliUsageError;
    }
    const auto paths = LibraryPaths::fromEnvironment();
    const LibraryLocation library = currentLibrary();
    const auto catalogFile = openCatalogForReading(library);
    Catalog& catalog = *catalogFile;
    out << "library: " << library.shown() << " (" << library.source << ")"
        << (catalog.isReadOnly() ? " (read-only)" : "") << "\n"
        << "activation folder: " << paths.activationFolder().string() << "\n"
        << "faces: " << catalog.faceCount() << " (" << catalog.activeFaceCount() << " active)\n"
        << "auto-activation: " << (catalog.autoActivation() ? "on" : "off") << "\n"
        << "auto-deactivation: " << (catalog.autoDeactivation() ? "on" : "off") << "\n"
        << "system fonts: " << (catalog.systemFonts() ? "on" : "off") << "\n"
        << "server: " << serverState() << "\n";
    printAutomaticActivations(catalog, out);
    printWorkstationCounts(catalog, library, out);
    out << "applications told of changes:";
    for (const auto& target : catalog.targets()) {
        out << " " << target.signature << " (" << target.eventClass << ")";
    }
    out << "\n";
    for (const auto& link : catalog.allLinks()) {
        if (!Activation::isIntact(link)) {
            out << "broken activation link: " << link.link.string() << " (container " << link.faceId
                << ")\n";
        }
    }
    printWindowlessRequests(catalog, "show", "asked to show", out);
    printWindowlessRequests(catalog, "buy", "wish list", out);
    return 0;
}

int removeCommand(const CliArguments& arguments, std::ostream& out, std::ostream& errors) {
    if (arguments.empty()) {
        errors << "vellumine remove: name at least one container id or PostScript name\n";
        return cliUsageError;
    }
    const auto catalog = openForWriting(errors);
    Activation activation(*catalog, LibraryPaths::fromEnvironment().activationFolder());
    bool failed = false;
    bool removed = false;
    bool deactivated = false;
    for (const auto& argument : arguments) {
        std::vector<std::int64_t> ids;
        if (!resolveFaces(*catalog, argument, true, ids, errors)) {
            failed = true;
            continue;
        }
        for (const auto id : ids) {
            const RemovalResult result = activation.remove(id);
            (result.removed ? out : errors) << result.message << "\n";
            failed = failed || !result.removed;
            removed = removed || result.removed;
            deactivated = deactivated || result.wasActive;
        }
    }
    LibraryChanges changes(*catalog);
    changes.warnTo(errors);
    if (deactivated) {
        changes.announce(ChangeKind::activeFontsChanged);
    }
    if (removed) {
        changes.announce(ChangeKind::libraryFilesChanged);
    }
    return failed ? 1 : 0;
}

int grantCommand(const CliArguments& arguments, std::ostream& out, std::ostream& errors) {
    if (arguments.size() != 2 || (arguments[1] != "read" && arguments[1] != "write")) {
        errors << "vellumine grant: usage: grant ROLE read|write\n";
        return cliUsageError;
    }
    const auto catalog = openForWriting(errors);
    catalog->grant(arguments[0],
                   arguments[1] == "write" ? LibraryRight::write : LibraryRight::read);
    out << "role " << arguments[0] << " may now "
        << (arguments[1] == "write" ? "read and change" : "read and activate from")
        << " the library " << currentLibrary().shown() << "\n";
    return 0;
}

} // namespace Vellumine
