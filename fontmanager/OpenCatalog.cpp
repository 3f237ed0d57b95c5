#include "fontmanager/OpenCatalog.h"

#include "fontmanager/PostgresCatalog.h"
#include "fontmanager/SqliteCatalog.h"
#include "fontmanager/Workstation.h"

namespace Vellumine {

std::unique_ptr<Catalog> openCatalog(const LibraryLocation& location,
                                     Catalog::BusyReporter busyReporter) {
    if (location.kind == LibraryLocation::Kind::postgresql) {
        return std::make_unique<PostgresCatalog>(location, workstationId(),
                                                 std::move(busyReporter));
    }
    return std::make_unique<SqliteCatalog>(location.file, SqliteCatalog::Access::readWrite,
                                           std::move(busyReporter));
}

std::unique_ptr<Catalog> openCatalogForReading(const LibraryLocation& location) {
    if (location.kind != LibraryLocation::Kind::sqlite) {
        // The database's grants decide what a role may do; there is no read-only mode to
        // fall back to.
        return openCatalog(location);
    }
    return SqliteCatalog::openForReading(location.file);
}

} // namespace Vellumine
