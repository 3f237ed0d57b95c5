#pragma once

#include "foundation/SmartPointer.h"
#include "link/ProtocolFont.h"

#include <cstdint>
#include <string>
#include <vector>

// One font as the plug-in and the font manager discuss it: the wire fields plus what only
// the host side knows. Records are shared between the document font suite, the requests
// and the dialogs, so a reply merged into a record is seen by every holder.
class VLMFontInfo : public Tamrik::SmartPointable {
public:
    VLMFontInfo() = default;
    ~VLMFontInfo() override = default;

    // "PostScript", "TrueType", "OpenType PostScript", "OpenType TrueType" or "Unknown".
    std::string getTechnology() const;
    // The wire text of the type; empty for any type outside 0 to 3.
    std::string getTypeString() const;
    // Lenient conversion for the show reply: every unknown text is type 4.
    static std::int32_t typeStringToEnum(const std::string& text);

    Protocol::Font font;
    std::string hostFontName;
    // Container chosen on the host side, in decimal; only a value above 0 counts.
    std::string selectedContainerID;
    bool stateFlag0 = true;
    bool stateFlag1 = false; // a replacement font has been chosen
    bool hasTypeMatching = false;
    bool stateFlag3 = false;
    bool stateFlag4 = false; // the document lists the font as used, not as missing
};

using VLMFontList = std::vector<Tamrik::SmartPointer<VLMFontInfo>>;
