#include "fontmanager/RequestDispatcher.h"

#include "fontmanager/ActivationRequestHandler.h"
#include "fontmanager/FontRequestHandler.h"
#include "fontmanager/ReplyWriter.h"
#include "fontmanager/ShowAndBuy.h"
#include "foundation/Logger.h"

#include <algorithm>

namespace Vellumine {

namespace {

const std::string logTag = "vellumine-request";
const std::string defaultEventClass = "VLM4";

std::string summary(const Request& request) {
    return request.command + " with " + std::to_string(request.fonts.size()) + " font(s)" +
           (request.targetApp.empty() ? "" : " from " + request.targetApp);
}

} // namespace

RequestDispatcher::RequestDispatcher(Catalog& catalog, Activation& activation,
                                     LibraryChanges& changes, DispatcherOptions options)
    : catalog(catalog), activation(activation), changes(changes), options(std::move(options)),
      systemFonts(this->options.systemFontsKeptIn) {}

void RequestDispatcher::preloadSystemFonts() {
    if (catalog.systemFonts()) {
        systemFonts.preload(activation.linkFolder());
    }
}

bool RequestDispatcher::isSignature(const std::string& text) {
    return text.size() == 4 &&
           std::all_of(text.begin(), text.end(), [](char c) { return c > ' ' && c < 0x7F; });
}

std::string RequestDispatcher::answer(const std::string& requestText) {
    const ParsedRequest parsed = parseRequest(requestText, options.limits);
    if (!parsed.ok) {
        Logger::log(logTag, "refused request of " + std::to_string(requestText.size()) +
                                " bytes: " + parsed.error);
        return errorReply(parsed.error);
    }
    Logger::log(logTag, "received " + summary(parsed.request));
    try {
        std::string reply = dispatch(parsed.request);
        Logger::log(logTag, "answered " + parsed.request.command + " with " +
                                std::to_string(reply.size()) + " bytes");
        if (reply.size() > options.replyLimits.maximumBytes) {
            return errorReply("the reply would pass " +
                              std::to_string(options.replyLimits.maximumBytes) +
                              " bytes; ask for fewer fonts at once");
        }
        return reply;
    } catch (const std::exception& error) {
        Logger::log(logTag, "failed " + parsed.request.command + ": " + error.what());
        return errorReply(error.what());
    }
}

std::string RequestDispatcher::dispatch(const Request& request) {
    const std::string& command = request.command;
    const std::string& version = options.protocolVersion;
    if (command == "fontRequest") {
        rememberTarget(request);
        FontRequestContext context{catalog,     activation,     changes, options.replyLimits,
                                   systemFonts, options.desktop};
        return answerFontRequest(context, request, requester(request), version);
    }
    if (command == "activationRequest") {
        return answerActivationRequest(activation, changes, request, version);
    }
    if (command == "showRequest") {
        rememberTarget(request);
        return answerShowRequest(catalog, request, version, options.desktop);
    }
    if (command == "buyRequest") {
        return answerBuyRequest(catalog, request, version, options.desktop);
    }
    Logger::log(logTag, "refused unknown command '" + command + "'");
    return errorReply("unknown command '" + command + "'");
}

std::string RequestDispatcher::errorReply(const std::string& why) const {
    return ReplyWriter("errorReply", options.protocolVersion).element("error", why).finish();
}

std::string RequestDispatcher::requester(const Request& request) {
    return isSignature(request.targetApp) ? request.targetApp : "an unnamed application";
}

void RequestDispatcher::rememberTarget(const Request& request) {
    if (request.targetApp.empty()) {
        return;
    }
    const std::string& eventClass =
        request.targetClass.empty() ? defaultEventClass : request.targetClass;
    if (!isSignature(request.targetApp) || !isSignature(eventClass)) {
        Logger::log(logTag, "not remembering target '" + request.targetApp + "' / '" + eventClass +
                                "': not four-character codes");
        return;
    }
    if (rememberedTargets.emplace(request.targetApp, eventClass).second) {
        try {
            catalog.rememberTarget({request.targetApp, eventClass});
            Logger::log(logTag, "will tell " + request.targetApp + " of library changes");
        } catch (const CatalogError& error) {
            // The request still deserves its answer; the next one tries again.
            rememberedTargets.erase({request.targetApp, eventClass});
            Logger::log(logTag,
                        std::string("cannot remember ") + request.targetApp + ": " + error.what());
        }
    }
}

} // namespace Vellumine
