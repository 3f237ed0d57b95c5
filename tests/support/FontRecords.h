#pragma once

#include "link/FontInfo.h"

#include <string>

namespace VLMTest {

// The plug-in's record of one font, as the host fills it in before a request.
inline Tamrik::SmartPointer<VLMFontInfo> makeFont(const std::string& syncID,
                                                  const std::string& psName, int type = 4) {
    Tamrik::SmartPointer<VLMFontInfo> font(new VLMFontInfo());
    font->font.syncID = syncID;
    font->font.psName = psName;
    font->font.type = type;
    return font;
}

} // namespace VLMTest
