#pragma once

#include "fontmanager/Catalog.h"

#include <functional>
#include <ostream>
#include <string>

namespace Vellumine {

// The kinds of library change, sent to applications as the IDs of "VLM4" events.
namespace ChangeKind {
// "FSBC": the set of active fonts changed (faces were activated or deactivated), so
// fontconfig now lists other fonts.
inline const std::string activeFontsChanged = "FSBC";
// "FFSC": the library's set of font files changed (faces were added or refreshed) while
// the active fonts stayed the same, so a font request may now be answered differently.
inline const std::string libraryFilesChanged = "FFSC";
} // namespace ChangeKind

// The process-wide notification posted after every change.
inline const std::string libraryChangedNotification = "org.vellumine.Vellumine.FontLibraryChanged";

// Records a change in the catalog's journal and posts the library-change notification.
// The serving process watches that notification and forwards the journal's new entries to
// applications as "VLM4" events, so that changes made from the command line reach them too.
class LibraryChanges {
public:
    using Poster = std::function<int(const std::string& notificationName)>;

    // Posts through the platform's named notifications unless given another poster.
    explicit LibraryChanges(Catalog& catalog, Poster poster = {});

    // Where to warn, once, that the notification cannot be posted: applications then never
    // hear of the changes. Without it the failure is only logged.
    LibraryChanges& warnTo(std::ostream& out) {
        warnings = &out;
        return *this;
    }

    void announce(const std::string& kind);

private:
    Catalog& catalog;
    Poster poster;
    std::ostream* warnings = nullptr;
    bool warned = false;
};

} // namespace Vellumine
