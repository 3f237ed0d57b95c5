#include "link/VLMFontBuyEvent.h"

#include "link/RequestText.h"

namespace VLM {

void VLMFontBuyEvent::build() {
    using namespace RequestText;
    message = command("buyRequest");
    for (const Tamrik::SmartPointer<VLMFontInfo>& record : fonts) {
        message += fontOpening() + element("psName", record->font.psName) + fontClosing();
    }
    message += end();
}

} // namespace VLM
