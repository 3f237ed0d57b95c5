#pragma once

#include "fontmanager/Catalog.h"
#include "fontmanager/LibraryLocation.h"

#include <memory>

namespace Vellumine {

// The catalog at a library location, opened for changes: created where it does not exist
// yet, its schema brought up to date.
std::unique_ptr<Catalog> openCatalog(const LibraryLocation& location,
                                     Catalog::BusyReporter busyReporter = {});

// For commands that only read: as openCatalog() where the catalog may be changed, else
// read-only, so that a library the user may not change can still be listed.
std::unique_ptr<Catalog> openCatalogForReading(const LibraryLocation& location);

} // namespace Vellumine
