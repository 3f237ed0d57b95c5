#include "link/ProtocolFont.h"

#include "foundation/Exception.h"
#include "foundation/IXmlNode.h"

namespace Protocol {

std::int32_t Font::stringToType(const std::string& text) {
    if (text == "T1") {
        return 0;
    }
    if (text == "TT") {
        return 1;
    }
    if (text == "OT_T1") {
        return 2;
    }
    if (text == "OT_TT") {
        return 3;
    }
    if (text == "all") {
        return 4;
    }
    throw Tamrik::Exception("could not parse <font><type>" + text + "</type>...", "protocol", 69,
                            "");
}

namespace HandlerHelpers {

bool parseBoolean(const std::string& text) {
    return text == "true";
}

Font::Info parseFontInfo(const Tamrik::IXmlNode* node) {
    Font::Info info;
    const Tamrik::IXmlNode* label = node != nullptr ? node->getFirstTagChild() : nullptr;
    if (label == nullptr) {
        return info;
    }
    info.first = label->getContent();
    if (const Tamrik::IXmlNode* value = label->getNextTagNode()) {
        info.second = value->getContent();
    }
    return info;
}

} // namespace HandlerHelpers

} // namespace Protocol
