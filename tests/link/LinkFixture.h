#pragma once

#include "link/FontInfo.h"
#include "support/FakePlatform.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

namespace VLMTest {

// Fresh fakes for every test.
class LinkTest : public ::testing::Test {
protected:
    FakePlatform platform;
};

inline Tamrik::SmartPointer<VLMFontInfo> makeFont(const std::string& syncID,
                                                  const std::string& psName, int type = 4) {
    Tamrik::SmartPointer<VLMFontInfo> font(new VLMFontInfo());
    font->font.syncID = syncID;
    font->font.psName = psName;
    font->font.type = type;
    return font;
}

// A reply as the font manager writes it: "<cmd>NAME</cmd>", the given element lines and
// a lone "</cmd>", each on its own line.
inline std::string replyLines(std::initializer_list<std::string> lines,
                              const std::string& command = "fontReply") {
    std::string text = "<cmd>" + command + "</cmd>\n";
    for (const std::string& line : lines) {
        text += line + "\n";
    }
    return text + "</cmd>\n";
}

} // namespace VLMTest
