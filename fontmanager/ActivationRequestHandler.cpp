#include "fontmanager/ActivationRequestHandler.h"

#include "fontmanager/ContainerID.h"
#include "fontmanager/ReplyWriter.h"
#include "foundation/Logger.h"

namespace Vellumine {

namespace {

ActivationResult activateNamed(Activation& activation, const RequestFont& font) {
    const auto id = parseContainerID(font.containerID);
    if (!id) {
        return {ActivationResult::Outcome::failed,
                "'" + font.containerID + "' is not a container id (font " + font.psName + ")"};
    }
    // An application's explicit choice, but not the user's: a face that vellumine activated
    // on its own for the application stays an automatic one.
    return activation.activate(*id, {{}, false});
}

} // namespace

std::string answerActivationRequest(Activation& activation, LibraryChanges& changes,
                                    const Request& request, const std::string& protocolVersion) {
    ReplyWriter reply("activationReply", protocolVersion);
    bool changed = false;
    // Each activation is a transaction of its own (font files are read outside of them).
    for (const auto& font : request.fonts) {
        const ActivationResult result = activateNamed(activation, font);
        Logger::log("vellumine-activationRequest", result.message);
        changed = changed || result.outcome == ActivationResult::Outcome::changed;
        reply.openFont()
            .element("containerID", font.containerID)
            .element("psName", font.psName)
            .element("activationSuccessfull", result.succeeded())
            .closeFont();
    }
    if (changed) {
        changes.announce(ChangeKind::activeFontsChanged);
    }
    return reply.finish();
}

} // namespace Vellumine
