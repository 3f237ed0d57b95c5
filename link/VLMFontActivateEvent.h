#pragma once

#include "link/VLMEvent.h"

namespace VLM {

// Asks the font manager to activate fonts. Its reply is read but never reported: callers
// learn what became active from their next font request.
class VLMFontActivateEvent : public VLMFontBasedEvent {
public:
    void build() override;
    Tamrik::IXmlNode* parseResult() override;
};

} // namespace VLM
