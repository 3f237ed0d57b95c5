#pragma once

#include "link/VLMEvent.h"

namespace VLM {

// Asks the font manager to show fonts to the user. The reply may correct a record's type
// and count; it is never reported as a result.
class VLMFontInfoEvent : public VLMFontBasedEvent {
public:
    void build() override;
    Tamrik::IXmlNode* parseResult() override;
};

} // namespace VLM
