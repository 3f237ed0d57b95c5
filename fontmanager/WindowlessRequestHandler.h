#pragma once

#include "fontmanager/Catalog.h"
#include "fontmanager/Request.h"

#include <string>

namespace Vellumine {

// vellumine has no window of its own and no store. A "showRequest" is recorded (shown by
// `vellumine status`, written to the log) and answered with what the library holds of each
// font; a "buyRequest" is recorded as a wish-list entry, answered with a <message> that
// says so.
std::string answerShowRequest(Catalog& catalog, const Request& request,
                              const std::string& protocolVersion);
std::string answerBuyRequest(Catalog& catalog, const Request& request,
                             const std::string& protocolVersion);

} // namespace Vellumine
