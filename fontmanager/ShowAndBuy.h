#pragma once

#include "fontmanager/Catalog.h"
#include "fontmanager/Desktop.h"
#include "fontmanager/Request.h"

#include <string>

namespace Vellumine {

// A "showRequest" brings vellumine's window up on the first font's face, a "buyRequest"
// opens the browser on where the first font can be bought (see StoreUrl.h), when the
// desktop has a display. Either way the request is recorded (`vellumine status`, the log;
// a buy request is the wish list) and the show reply says what the library holds of each
// font. Without a desktop or a display, recording is all that happens, and the reply's
// <message> says so.
std::string answerShowRequest(Catalog& catalog, const Request& request,
                              const std::string& protocolVersion, Desktop* desktop = nullptr);
std::string answerBuyRequest(Catalog& catalog, const Request& request,
                             const std::string& protocolVersion, Desktop* desktop = nullptr);

} // namespace Vellumine
