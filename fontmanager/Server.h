#pragma once

#include "fontmanager/LibraryPaths.h"
#include "fontmanager/TemporaryActivation.h"

#include <ostream>
#include <string>

namespace Vellumine {

// The bus name vellumine owns while it serves; owning it is also the lock that keeps a
// second server out.
inline const std::string serviceBusName = "org.vellumine.Vellumine";
// The event class under which requests arrive (the font manager's signature).
inline const std::string requestEventClass = "VLMQ";

struct ServeOptions {
    std::string protocolVersion = "2.0";
    // How long after an application left the bus the faces activated for it go.
    TemporaryActivation::Clock::duration deactivationDelay = deactivationDelayFromEnvironment();
};

// Owns the bus name, answers requests and forwards library changes until SIGTERM, SIGINT
// or the loss of the bus. Returns the process exit status: 0 after a signal, 3 when
// another process serves already, 1 on other failures.
int serve(const LibraryPaths& paths, const ServeOptions& options, std::ostream& errors);

} // namespace Vellumine
