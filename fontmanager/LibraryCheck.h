#pragma once

#include "fontmanager/Catalog.h"

#include <filesystem>
#include <string>
#include <vector>

namespace Vellumine {

struct LibraryCheckReport {
    std::vector<std::string> problems; // what disagrees, one line each
    std::vector<std::string> repairs;  // what was done about it (with repair only)
};

// Compares the catalog with the activation folder: the database's own integrity check, every face
// recorded active has its link pointing where it was made, and every link there that
// vellumine made (named "<id>-…", pointing to that face's file) is recorded. A process
// killed between making a link and recording it leaves such a link behind.
//
// With `repair`, records of links that are gone are dropped (the face is no longer active)
// and links nothing records are removed; files vellumine did not make are never touched.
// The check holds the catalog's write lock, as every activation does while it links, so it
// never mistakes an activation in progress for a leftover. A read-only catalog is checked
// without repairs.
LibraryCheckReport checkLibrary(Catalog& catalog, const std::filesystem::path& activationFolder,
                                bool repair);

// The links alone, repaired, without the database's checks (the integrity check and the
// scan for faces of unknown type read the whole catalog: a second for 100,000 faces on a
// cold cache): what a server needs on start, after a killed command, and after another
// workstation changed a shared library (its removed faces' links here are left over); cheap
// enough to run on every change. `vellumine check` runs the rest.
LibraryCheckReport repairLinks(Catalog& catalog, const std::filesystem::path& activationFolder);

} // namespace Vellumine
