#include "link/VLMFontInfoEvent.h"

#include "foundation/NumberText.h"
#include "link/ProtocolConstants.h"
#include "link/RequestText.h"

#include <algorithm>

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
    for (const Tamrik::IXmlNode* node = root->getFirstChild(); node != nullptr;
         node = node->getNextNode()) {
        if (node->getName() != "font") {
            continue;
        }
        const Tamrik::IXmlNode* psName = node->getFirstChild("psName");
        if (psName == nullptr) {
            continue;
        }
        const std::string name = psName->getContent();
        auto record = std::find_if(fonts.begin(), fonts.end(),
                                   [&](const auto& font) { return font->font.psName == name; });
        if (record == fonts.end()) {
            continue;
        }
        for (const Tamrik::IXmlNode* child = node->getFirstChild(); child != nullptr;
             child = child->getNextNode()) {
            const std::string childName = child->getName();
            if (childName == "type") {
                (*record)->font.type = VLMFontInfo::typeStringToEnum(child->getContent());
            } else if (childName == "count") {
                bool ok = false;
                (*record)->font.count = static_cast<std::uint32_t>(
                    Tamrik::safeParse<unsigned long>(child->getContent(), ok));
            }
        }
    }
    return nullptr;
}

} // namespace VLM
