#include "LinkFixture.h"

#include "link/VLMFontActivateEvent.h"
#include "link/VLMFontBuyEvent.h"
#include "link/VLMFontInfoEvent.h"
#include "link/VLMFontRequestEvent.h"

namespace {

using VLMTest::makeFont;

const std::string target = "<targetApp>InDn</targetApp>\n<targetClass>VLM4</targetClass>\n";
const std::string fontRequestHead =
    "<cmd>fontRequest</cmd>\n" + target + "<protocolVersion>1.00</protocolVersion>\n";
const std::string showRequestHead = "<cmd>showRequest</cmd>\n" + target;

template <typename Event>
std::string built(const VLMFontList& fonts) {
    Event event;
    event.fonts = fonts;
    event.build();
    return event.getMessage();
}

TEST(RequestText, EmptyFontListsStillOpenAndClose) {
    EXPECT_EQ(built<VLM::VLMFontRequestEvent>({}), fontRequestHead + "</cmd>\n");
    EXPECT_EQ(built<VLM::VLMFontActivateEvent>({}), "<cmd>activationRequest</cmd>\n</cmd>\n");
    EXPECT_EQ(built<VLM::VLMFontInfoEvent>({}), showRequestHead + "</cmd>\n");
    EXPECT_EQ(built<VLM::VLMFontBuyEvent>({}), "<cmd>buyRequest</cmd>\n</cmd>\n");
}

// Values go out unescaped; type 4 and empty names are left out, an unknown type is empty.
TEST(RequestText, RequestsWriteRawValuesAndOnlySetElements) {
    auto postScript = makeFont("7", "A&B<C", 0);
    postScript->font.familyName = "Smith & Sons <Pro>";
    auto unknown = makeFont("8", "Mystery", 4);
    unknown->font.styleName = "Bold";
    const VLMFontList fonts = {postScript, unknown, makeFont("9", "Odd", 9)};
    EXPECT_EQ(built<VLM::VLMFontRequestEvent>(fonts),
              fontRequestHead + "<font>\n<syncID>7</syncID>\n<psName>A&B<C</psName>\n"
                                "<type>T1</type>\n<familyName>Smith & Sons <Pro></familyName>\n"
                                "</font>\n<font>\n<syncID>8</syncID>\n<psName>Mystery</psName>\n"
                                "<styleName>Bold</styleName>\n</font>\n<font>\n<syncID>9</syncID>\n"
                                "<psName>Odd</psName>\n<type></type>\n</font>\n</cmd>\n");
    EXPECT_EQ(built<VLM::VLMFontInfoEvent>(fonts),
              showRequestHead + "<font>\n<psName>A&B<C</psName>\n<type>T1</type>\n</font>\n"
                                "<font>\n<psName>Mystery</psName>\n</font>\n"
                                "<font>\n<psName>Odd</psName>\n<type></type>\n</font>\n</cmd>\n");
    EXPECT_EQ(built<VLM::VLMFontBuyEvent>({postScript}),
              "<cmd>buyRequest</cmd>\n<font>\n<psName>A&B<C</psName>\n</font>\n</cmd>\n");
}

// Activation falls back to the suggested container; a show request names only the
// host's own choice.
TEST(RequestText, ContainerChoice) {
    const struct {
        const char* selected;
        const char* activated;
    } rows[] = {{"0", "42"}, {"-3", "42"}, {"", "42"}, {"abc", "42"}, {"17", "17"}};
    for (const auto& row : rows) {
        auto font = makeFont("1", "Font");
        font->selectedContainerID = row.selected;
        font->font.typeMatchingContainerID = "42";
        EXPECT_EQ(built<VLM::VLMFontActivateEvent>({font}),
                  std::string("<cmd>activationRequest</cmd>\n<font>\n<containerID>") +
                      row.activated + "</containerID>\n<psName>Font</psName>\n</font>\n</cmd>\n")
            << "selectedContainerID '" << row.selected << "'";
        const std::string shown =
            row.selected == std::string("17") ? "<containerID>17</containerID>\n" : "";
        EXPECT_EQ(built<VLM::VLMFontInfoEvent>({font}),
                  showRequestHead + "<font>\n" + shown + "<psName>Font</psName>\n</font>\n</cmd>\n")
            << "selectedContainerID '" << row.selected << "'";
    }
}

} // namespace
