#include "fontmanager/ShowAndBuy.h"

#include "fontmanager/FontMatcher.h"
#include "fontmanager/ReplyWriter.h"
#include "fontmanager/StoreUrl.h"
#include "foundation/Logger.h"

namespace Vellumine {

namespace {

void record(Catalog& catalog, const std::string& kind, const Request& request) {
    catalog.write([&] {
        for (const auto& font : request.fonts) {
            catalog.recordWindowlessRequest(
                {0, kind, 0, request.targetApp, font.psName, font.containerID, font.type});
        }
    });
    for (const auto& font : request.fonts) {
        Logger::log("vellumine-" + kind + "Request",
                    (kind == "buy" ? "wish list: " : "asked to show ") + font.psName +
                        (font.containerID.empty() ? "" : " (container " + font.containerID + ")"));
    }
}

bool onDisplay(Desktop* desktop, const Request& request) {
    return desktop != nullptr && !request.fonts.empty() && desktop->hasDisplay();
}

} // namespace

std::string answerShowRequest(Catalog& catalog, const Request& request,
                              const std::string& protocolVersion, Desktop* desktop) {
    record(catalog, "show", request);
    ReplyWriter reply("showReply", protocolVersion);
    catalog.read([&] {
        FontMatcher matcher(catalog);
        for (const auto& font : request.fonts) {
            const FontMatch& match = matcher.match(font);
            const FaceRecord* best = match.bestFace();
            const std::string type = match.requestedType ? wireText(*match.requestedType)
                                     : best              ? wireText(best->type)
                                                         : "all";
            reply.openFont()
                .element("psName", font.psName)
                .element("type", type)
                .element("count", std::to_string(match.faces.size()))
                .closeFont();
        }
    });
    reply.element("showWindow", std::string("0"));
    if (onDisplay(desktop, request)) {
        const RequestFont& first = request.fonts.front();
        desktop->showFace(first.containerID, first.psName);
        return reply.element("message", std::string("shown in vellumine's window")).finish();
    }
    return reply.element("message", std::string("recorded; see vellumine status")).finish();
}

std::string answerBuyRequest(Catalog& catalog, const Request& request,
                             const std::string& protocolVersion, Desktop* desktop) {
    record(catalog, "buy", request);
    ReplyWriter reply("buyReply", protocolVersion);
    if (onDisplay(desktop, request)) {
        const std::string url = buyUrl(catalog, request.fonts.front().psName);
        desktop->openUrl(url);
        return reply.element("message", "opened " + url + " in the browser; also on the wish list")
            .finish();
    }
    return reply
        .element("message", std::string("no display to open a store on; recorded on the wish "
                                        "list, see vellumine status"))
        .finish();
}

} // namespace Vellumine
