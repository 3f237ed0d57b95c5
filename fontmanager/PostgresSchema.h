#pragma once

namespace Vellumine {

// The PostgreSQL library's schema 1, as one script (see PostgresCatalog for what belongs to
// the library and what to one workstation).
extern const char* const postgresSchema;

// The tables a role needs to read the library and record its own workstation's state, and
// those that adding and removing faces change.
extern const char* const postgresReadTables;
extern const char* const postgresWorkstationTables;
extern const char* const postgresWorkstationSequences;
extern const char* const postgresLibraryTables;
extern const char* const postgresLibrarySequences;

} // namespace Vellumine
