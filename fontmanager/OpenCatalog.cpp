#include "fontmanager/OpenCatalog.h"

#include "fontmanager/SqliteCatalog.h"

namespace Vellumine {

std::unique_ptr<Catalog> openCatalog(const LibraryLocation& location,
                                     Catalog::BusyReporter busyReporter) {
    if (location.kind != LibraryLocation::Kind::sqlite) {
        throw CatalogError("library " + location.shown() + ": only SQLite libraries are known");
    }
    return std::make_unique<SqliteCatalog>(location.file, SqliteCatalog::Access::readWrite,
                                           std::move(busyReporter));
}

std::unique_ptr<Catalog> openCatalogForReading(const LibraryLocation& location) {
    if (location.kind != LibraryLocation::Kind::sqlite) {
        return openCatalog(location);
    }
    return SqliteCatalog::openForReading(location.file);
}

} // namespace Vellumine
