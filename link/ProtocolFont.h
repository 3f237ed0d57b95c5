#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Tamrik {
class IXmlNode;
}

namespace Protocol {

// One font as the font manager describes it on the wire. A plain value: the reply parser
// fills one per <font> element, and the record's protocol half is one of these.
struct Font {
    // A label and its value, as a <fontInfo> element carries them.
    struct Info {
        std::string first;
        std::string second;
    };

    // Strict conversion of a <type> text: only "T1", "TT", "OT_T1", "OT_TT" and "all" are
    // known, anything else raises Tamrik::Exception.
    static std::int32_t stringToType(const std::string& text);

    std::string syncID;
    std::int32_t type = 4;
    std::string psName;
    std::string styleName;
    std::string familyName;
    std::uint32_t count = 0;
    bool isActive = false;
    std::uint32_t typeMatchingCount = 0;
    bool isTypeMatchingActive = false;
    std::string typeMatchingContainerID;
    std::vector<Info> fontInfo;
    std::uint32_t reservedValue = 0;
    std::string containerID;
    bool activationSuccessfull = false;
};

namespace HandlerHelpers {

// True exactly for the text "true": no trimming, no other spellings.
bool parseBoolean(const std::string& text);

// The contents of the node's first two element children, whatever their names; missing
// children give empty strings.
Font::Info parseFontInfo(const Tamrik::IXmlNode* node);

} // namespace HandlerHelpers

} // namespace Protocol
