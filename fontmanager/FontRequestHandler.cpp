#include "fontmanager/FontRequestHandler.h"

#include "fontmanager/ReplyWriter.h"

namespace Vellumine {

namespace {

std::string orDefault(const std::string& value, const std::string& fallback) {
    return value.empty() ? fallback : value;
}

// A particular requested type is echoed, so that the application keeps asking for what
// its document needs; without one, the type of the face offered.
std::string replyType(const FontMatch& match, const FaceRecord* best) {
    if (match.requestedType) {
        return wireText(*match.requestedType);
    }
    return best != nullptr ? wireText(best->type) : "all";
}

void writeFont(ReplyWriter& reply, const RequestFont& font, const FontMatch& match) {
    const FaceRecord* best = match.bestFace();
    const FaceRecord* bestTyped = match.bestTypeMatchingFace();
    reply.openFont()
        .element("syncID", font.syncID)
        .element("psName", orDefault(font.psName, best ? best->postScriptName : ""))
        .element("familyName", orDefault(font.familyName, best ? best->family : ""))
        .element("styleName", orDefault(font.styleName, best ? best->style : ""))
        .element("type", replyType(match, best))
        .element("count", std::to_string(match.faces.size()))
        .element("isActive", match.isActive())
        .element("typeMatchingCount", std::to_string(match.typeMatching.size()))
        .element("isTypeMatchingActive", match.isTypeMatchingActive())
        .element("typeMatchingContainerID", bestTyped ? std::to_string(bestTyped->id) : "")
        .element("containerID", best ? std::to_string(best->id) : "");
    for (const auto& face : match.faces) {
        reply.fontInfo(std::to_string(face.id), describeFace(face));
    }
    reply.closeFont();
}

} // namespace

bool asksForChoice(const FontMatch& match) {
    return match.typeMatching.size() > 1 && !match.isTypeMatchingActive();
}

std::string describeFace(const FaceRecord& face) {
    return face.postScriptName + ", " + face.family + " " + face.style + ", " +
           technologyName(face.type) + ", " + (face.active ? "active" : "inactive") + ", " +
           face.file.filename().string();
}

std::string answerFontRequest(Catalog& catalog, const Request& request,
                              const std::string& protocolVersion) {
    ReplyWriter reply("fontReply", protocolVersion);
    bool showWindow = false;
    SqliteTransaction snapshot(catalog.database(), SqliteTransaction::Mode::read);
    for (const auto& font : request.fonts) {
        const FontMatch match = matchFont(catalog, font);
        showWindow = showWindow || asksForChoice(match);
        writeFont(reply, font, match);
    }
    snapshot.commit();
    reply.element("showWindow", std::string(showWindow ? "1" : "0"));
    return reply.finish();
}

} // namespace Vellumine
