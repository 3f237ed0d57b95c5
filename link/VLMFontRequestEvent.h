#pragma once

#include "link/ProtocolFont.h"
#include "link/VLMEvent.h"

#include <vector>

namespace VLM {

// Asks the font manager what it holds of each font; the reply is merged into the
// records by syncID.
class VLMFontRequestEvent : public VLMFontBasedEvent {
public:
    void build() override;
    Tamrik::IXmlNode* parseResult() override;

private:
    static Protocol::Font parseFont(const Tamrik::IXmlNode* fontNode);
    void merge(const std::vector<Protocol::Font>& replyFonts);
};

} // namespace VLM
