#include "LinkFixture.h"

#include "link/VLMFontActivateEvent.h"
#include "link/VLMFontBuyEvent.h"
#include "link/VLMFontInfoEvent.h"
#include "link/VLMFontRequestEvent.h"

namespace {

using VLMTest::makeFont;

const std::string fontRequestHead = "<cmd>fontRequest</cmd>\n"
                                    "<targetApp>InDn</targetApp>\n"
                                    "<targetClass>VLM4</targetClass>\n"
                                    "<protocolVersion>1.00</protocolVersion>\n";

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
    EXPECT_EQ(built<VLM::VLMFontInfoEvent>({}), "<cmd>showRequest</cmd>\n"
                                                "<targetApp>InDn</targetApp>\n"
                                                "<targetClass>VLM4</targetClass>\n"
                                                "</cmd>\n");
    EXPECT_EQ(built<VLM::VLMFontBuyEvent>({}), "<cmd>buyRequest</cmd>\n</cmd>\n");
}

TEST(RequestText, FontRequestWritesOptionalElementsOnlyWhenSet) {
    auto postScript = makeFont("7", "Minion-Regular", 0);
    postScript->font.familyName = "Minion";
    auto unknown = makeFont("8", "Mystery", 4);
    unknown->font.styleName = "Bold";
    EXPECT_EQ(built<VLM::VLMFontRequestEvent>({postScript, unknown}),
              fontRequestHead + "<font>\n<syncID>7</syncID>\n<psName>Minion-Regular</psName>\n"
                                "<type>T1</type>\n<familyName>Minion</familyName>\n</font>\n"
                                "<font>\n<syncID>8</syncID>\n<psName>Mystery</psName>\n"
                                "<styleName>Bold</styleName>\n</font>\n</cmd>\n");
}

TEST(RequestText, ValuesAreWrittenUnescaped) {
    auto font = makeFont("1", "A&B<C", 3);
    font->font.familyName = "Smith & Sons <Pro>";
    const std::string text = built<VLM::VLMFontRequestEvent>({font});
    EXPECT_NE(text.find("<psName>A&B<C</psName>\n<type>OT_TT</type>\n"
                        "<familyName>Smith & Sons <Pro></familyName>\n"),
              std::string::npos);
    EXPECT_NE(built<VLM::VLMFontBuyEvent>({font}).find("<psName>A&B<C</psName>"),
              std::string::npos);
}

TEST(RequestText, ActivationFallsBackToTheSuggestedContainer) {
    for (const char* selected : {"0", "-3", "", "abc"}) {
        auto font = makeFont("1", "Font");
        font->selectedContainerID = selected;
        font->font.typeMatchingContainerID = "42";
        EXPECT_EQ(built<VLM::VLMFontActivateEvent>({font}),
                  "<cmd>activationRequest</cmd>\n<font>\n<containerID>42</containerID>\n"
                  "<psName>Font</psName>\n</font>\n</cmd>\n")
            << "selectedContainerID '" << selected << "'";
    }
    auto chosen = makeFont("1", "Font");
    chosen->selectedContainerID = "17";
    chosen->font.typeMatchingContainerID = "42";
    EXPECT_NE(built<VLM::VLMFontActivateEvent>({chosen}).find("<containerID>17</containerID>"),
              std::string::npos);
}

TEST(RequestText, ShowRequestNamesOnlyTheHostsChoice) {
    auto fallback = makeFont("1", "Plain", 4);
    fallback->selectedContainerID = "-1";
    fallback->font.typeMatchingContainerID = "42";
    auto chosen = makeFont("2", "Chosen", 1);
    chosen->selectedContainerID = "17";
    EXPECT_EQ(built<VLM::VLMFontInfoEvent>({fallback, chosen}),
              "<cmd>showRequest</cmd>\n<targetApp>InDn</targetApp>\n"
              "<targetClass>VLM4</targetClass>\n"
              "<font>\n<psName>Plain</psName>\n</font>\n"
              "<font>\n<containerID>17</containerID>\n<psName>Chosen</psName>\n"
              "<type>TT</type>\n</font>\n</cmd>\n");
}

TEST(RequestText, UnknownTypeValueGivesAnEmptyTypeElement) {
    auto odd = makeFont("1", "Odd", 9);
    EXPECT_NE(built<VLM::VLMFontRequestEvent>({odd}).find("<type></type>\n"), std::string::npos);
}

} // namespace
