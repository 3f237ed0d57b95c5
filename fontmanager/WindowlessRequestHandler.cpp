#include "fontmanager/WindowlessRequestHandler.h"

#include "fontmanager/FontMatcher.h"
#include "fontmanager/ReplyWriter.h"
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

} // namespace

std::string answerShowRequest(Catalog& catalog, const Request& request,
                              const std::string& protocolVersion) {
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
    reply.element("message", std::string("recorded; see vellumine status"));
    return reply.finish();
}

std::string answerBuyRequest(Catalog& catalog, const Request& request,
                             const std::string& protocolVersion) {
    record(catalog, "buy", request);
    return ReplyWriter("buyReply", protocolVersion)
        .element("message", std::string("vellumine has no store; recorded on the wish list, "
                                        "see vellumine status"))
        .finish();
}

} // namespace Vellumine
