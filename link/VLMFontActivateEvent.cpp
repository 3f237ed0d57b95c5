#include "link/VLMFontActivateEvent.h"

#include "foundation/Logger.h"
#include "link/RequestText.h"

namespace VLM {

namespace {

const std::string parseTag = "VLMController-VLMFontActivateEvent::parseResult";

// The host's own choice when it names a container, else the font manager's suggestion.
const std::string& containerToActivate(const VLMFontInfo& record) {
    return RequestText::namesContainer(record.selectedContainerID)
               ? record.selectedContainerID
               : record.font.typeMatchingContainerID;
}

} // namespace

void VLMFontActivateEvent::build() {
    using namespace RequestText;
    message = command("activationRequest");
    for (const Tamrik::SmartPointer<VLMFontInfo>& record : fonts) {
        message += fontOpening() + element("containerID", containerToActivate(*record)) +
                   element("psName", record->font.psName) + fontClosing();
    }
    message += end();
}

Tamrik::IXmlNode* VLMFontActivateEvent::parseResult() {
    Tamrik::IXmlNode* root = VLMFontBasedEvent::parseResult();
    Logger::log(parseTag, "starting parsing message", 0);
    if (root == nullptr) {
        return nullptr;
    }
    // The per-font outcome is walked for the log only; nothing of it is kept.
    forEachAnsweredRecord(*root, "containerID", &Protocol::Font::containerID,
                          [](const Tamrik::IXmlNode& font, VLMFontInfo&) {
                              for (const Tamrik::IXmlNode* child = font.getFirstChild();
                                   child != nullptr; child = child->getNextNode()) {
                                  Logger::log(parseTag,
                                              child->getName() + ": " + child->getContent(), 0);
                              }
                          });
    Logger::log(parseTag, "end parsing message", 0);
    return nullptr;
}

} // namespace VLM
