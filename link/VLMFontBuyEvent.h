#pragma once

#include "link/VLMEvent.h"

namespace VLM {

// Asks the font manager to offer fonts for sale; only the reply check runs on its reply.
class VLMFontBuyEvent : public VLMFontBasedEvent {
public:
    void build() override;
};

} // namespace VLM
