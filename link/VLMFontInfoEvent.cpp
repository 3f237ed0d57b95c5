#include "link/VLMFontInfoEvent.h"

#include "foundation/NumberText.h"
#include "link/ProtocolConstants.h"
#include "link/RequestText.h"

namespace VLM {

void VLMFontInfoEvent::build() {
    using namespace RequestText;
    message = command("showRequest") + element("targetApp", targetApplication) +
              element("targetClass", targetClass);
    for (const Tamrik::SmartPointer<VLMFontInfo>& record : fonts) {
        message += fontOpening();
        // Only the host's own choice is named here: no fall-back to the suggestion.
        if (namesContainer(record->selectedContainerID)) {
            message += element("containerID", record->selectedContainerID);
        }
        message += element("psName", record->font.psName);
        if (record->font.type != 4) {
            message += element("type", record->getTypeString());
        }
        message += fontClosing();
    }
    message += end();
}

Tamrik::IXmlNode* VLMFontInfoEvent::parseResult() {
    Tamrik::IXmlNode* root = VLMFontBasedEvent::parseResult();
    if (root == nullptr) {
        return nullptr;
    }
    forEachAnsweredRecord(
        *root, "psName", &Protocol::Font::psName,
        [](const Tamrik::IXmlNode& font, VLMFontInfo& record) {
            for (const Tamrik::IXmlNode* child = font.getFirstChild(); child != nullptr;
                 child = child->getNextNode()) {
                const std::string name = child->getName();
                if (name == "type") {
                    record.font.type = VLMFontInfo::typeStringToEnum(child->getContent());
                } else if (name == "count") {
                    bool ok = false;
                    record.font.count = static_cast<std::uint32_t>(
                        Tamrik::safeParse<unsigned long>(child->getContent(), ok));
                }
            }
        });
    return nullptr;
}

} // namespace VLM
