#include "fontmanager/FontRequestHandler.h"

#include "fontmanager/AutoActivation.h"
#include "fontmanager/ReplyWriter.h"
#include "foundation/Logger.h"

#include <optional>

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

std::string containerText(const FaceRecord* face) {
    return face != nullptr && !face->onSystem ? std::to_string(face->id) : "";
}

void writeFont(ReplyWriter& reply, const RequestFont& font, const FontMatch& match,
               std::size_t facesListed) {
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
        .element("typeMatchingContainerID", containerText(bestTyped))
        .element("containerID", containerText(best));
    for (std::size_t i = 0; i < match.faces.size() && i < facesListed; ++i) {
        reply.fontInfo(containerText(match.faces[i]), describeFace(*match.faces[i]));
    }
    reply.closeFont();
}

// The reply, or nothing once it passes the size limit (checked after each font, so that a
// reply too large is never built in full).
std::optional<std::string> writeReply(FontMatcher& matcher, const Request& request,
                                      const std::string& protocolVersion, std::size_t facesListed,
                                      std::size_t maximumBytes) {
    ReplyWriter reply("fontReply", protocolVersion);
    bool showWindow = false;
    for (const auto& font : request.fonts) {
        const FontMatch& match = matcher.match(font);
        showWindow = showWindow || asksForChoice(match);
        writeFont(reply, font, match, facesListed);
        if (reply.size() > maximumBytes) {
            return std::nullopt;
        }
    }
    reply.element("showWindow", std::string(showWindow ? "1" : "0"));
    std::string text = reply.finish();
    if (text.size() > maximumBytes) {
        return std::nullopt;
    }
    return text;
}

} // namespace

bool asksForChoice(const FontMatch& match) {
    return !match.typeMatching.empty() && !match.isTypeMatchingActive();
}

std::string describeFace(const FaceRecord& face) {
    const std::string state = face.onSystem ? "installed on the system"
                              : face.active ? "active"
                                            : "inactive";
    // The file and its folder tell candidates apart (two copies of one face in two folders);
    // the names and the technology are the font's, which the plug-in shows beside it.
    return face.file.filename().string() + " in " + face.file.parent_path().string() + ", " + state;
}

const SystemFonts* currentSystemFonts(FontRequestContext& context) {
    if (!context.catalog.systemFonts()) {
        return nullptr;
    }
    try {
        return &context.systemFonts.current(context.activation.linkFolder());
    } catch (const std::exception& error) {
        // Answering from the library alone is still an answer.
        Logger::log("vellumine-request", std::string("system fonts unknown: ") + error.what());
        return nullptr;
    }
}

std::string answerFontRequest(FontRequestContext& context, const Request& request,
                              const std::string& application, const std::string& protocolVersion) {
    Catalog& catalog = context.catalog;
    const SystemFonts* system = currentSystemFonts(context);
    if (catalog.autoActivation()) {
        try {
            const AutomaticActivation automatic = activateAutomatically(
                catalog, context.activation, context.changes, request, application, system);
            if (context.desktop != nullptr && !automatic.activated.empty()) {
                context.desktop->announceAutomaticActivation(application, automatic.activated);
            }
            if (context.desktop != nullptr && automatic.requesterRecorded) {
                context.desktop->requesterRecorded(application);
            }
        } catch (const std::exception& error) {
            // The application still gets its answer, with the fonts as they are.
            Logger::log("vellumine-auto", std::string("auto-activation failed: ") + error.what());
        }
    }
    const ReplyLimits& limits = context.limits;
    std::optional<std::string> reply;
    catalog.read([&] {
        FontMatcher matcher(catalog, system);
        reply = writeReply(matcher, request, protocolVersion, limits.maximumFacesListed,
                           limits.maximumBytes);
        if (!reply) {
            reply = writeReply(matcher, request, protocolVersion, 0, limits.maximumBytes);
        }
    });
    if (!reply) {
        return ReplyWriter("errorReply", protocolVersion)
            .element("error", "the reply to " + std::to_string(request.fonts.size()) +
                                  " fonts would pass " + std::to_string(limits.maximumBytes) +
                                  " bytes; ask for fewer fonts at once")
            .finish();
    }
    return *reply;
}

} // namespace Vellumine
