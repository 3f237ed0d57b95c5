#include "fontmanager/LibraryChanges.h"

#include "foundation/Logger.h"
#include "platform/linux/NotifyFolder.h"
#include "platform/linux/notify.h"

namespace Vellumine {

namespace {

int postNamedNotification(const std::string& name) {
    return notify_post(name.c_str());
}

} // namespace

LibraryChanges::LibraryChanges(Catalog& catalog, Poster poster)
    : catalog(catalog), poster(poster ? std::move(poster) : Poster(postNamedNotification)) {}

void LibraryChanges::announce(const std::string& kind) {
    const std::int64_t id = catalog.recordChange(kind);
    const int status = poster(libraryChangedNotification);
    if (status != NOTIFY_STATUS_OK && warnings != nullptr && !warned) {
        *warnings << "vellumine: warning: applications will not hear of library changes: "
                  << Platform::Linux::NotifyFolder::describeFailure(libraryChangedNotification,
                                                                    status)
                  << "\n";
        warned = true;
    }
    Logger::log("vellumine-changes", "change " + std::to_string(id) + " " + kind + ", posted " +
                                         libraryChangedNotification + " (status " +
                                         std::to_string(status) + ")");
}

} // namespace Vellumine
