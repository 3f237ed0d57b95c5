#pragma once

#include "fontmanager/Activation.h"
#include "fontmanager/Catalog.h"
#include "fontmanager/FontRequestHandler.h"
#include "fontmanager/LibraryChanges.h"
#include "fontmanager/RequestParser.h"

#include <set>
#include <string>
#include <utility>

namespace Vellumine {

struct DispatcherOptions {
    std::string protocolVersion = "2.0";
    RequestLimits limits;
    ReplyLimits replyLimits;
    // The server's desktop side; none answers show and buy requests by recording them only.
    Desktop* desktop = nullptr;
    // Where the system's fonts are kept from one server to the next (none: not kept).
    std::filesystem::path systemFontsKeptIn = {};
};

// Turns one request text into its reply text. Never throws: a malformed request, an
// unknown command, a failing catalog or a reply that would pass the reply size limit gives
// an "errorReply" carrying the protocol version and an <error> line, and the refusal is
// logged. Remembers the applications that name
// themselves with <targetApp> so that they hear of later library changes.
class RequestDispatcher {
public:
    RequestDispatcher(Catalog& catalog, Activation& activation, LibraryChanges& changes,
                      DispatcherOptions options = {});

    std::string answer(const std::string& requestText);
    // Loads the system's fonts in the background when the library counts them, so that the
    // first font request does not wait for fontconfig.
    void preloadSystemFonts();
    void setDesktop(Desktop* desktop) { options.desktop = desktop; }

    static bool isSignature(const std::string& text);

private:
    std::string dispatch(const Request& request);
    std::string errorReply(const std::string& why) const;
    void rememberTarget(const Request& request);
    // The application a request comes from, as recorded with automatic activations.
    static std::string requester(const Request& request);

    Catalog& catalog;
    Activation& activation;
    LibraryChanges& changes;
    DispatcherOptions options;
    SystemFontsCache systemFonts;
    std::set<std::pair<std::string, std::string>> rememberedTargets;
};

} // namespace Vellumine
