#include "fontmanager/RequestParser.h"

#include <gtest/gtest.h>

namespace Vellumine {
namespace {

// A font request as the plug-in writes it: values unescaped.
const std::string pluginFontRequest = "<cmd>fontRequest</cmd>\n"
                                      "<targetApp>InDn</targetApp>\n"
                                      "<targetClass>VLM4</targetClass>\n"
                                      "<protocolVersion>1.00</protocolVersion>\n"
                                      "<font>\n"
                                      "<syncID>7</syncID>\n"
                                      "<psName>Smith&Sons-<Bold></psName>\n"
                                      "<type>OT_T1</type>\n"
                                      "<familyName>Smith & Sons</familyName>\n"
                                      "<styleName>Bold</styleName>\n"
                                      "</font>\n"
                                      "<font>\n"
                                      "<syncID>8</syncID>\n"
                                      "<psName>&xxe;</psName>\n"
                                      "</font>\n"
                                      "</cmd>\n";

TEST(RequestParser, ReadsThePluginsFontRequestWithRawValues) {
    const ParsedRequest parsed = parseRequest(pluginFontRequest);
    ASSERT_TRUE(parsed.ok) << parsed.error;
    const Request& request = parsed.request;
    EXPECT_EQ(request.command + " " + request.targetApp + " " + request.targetClass + " " +
                  request.protocolVersion,
              "fontRequest InDn VLM4 1.00");
    ASSERT_EQ(request.fonts.size(), 2u);
    const RequestFont& first = request.fonts[0];
    EXPECT_EQ(first.syncID + "|" + first.psName + "|" + first.type + "|" + first.familyName + "|" +
                  first.styleName,
              "7|Smith&Sons-<Bold>|OT_T1|Smith & Sons|Bold");
    // Entities are never expanded: the text is what the application wrote.
    EXPECT_EQ(request.fonts[1].psName, "&xxe;");
    EXPECT_EQ(request.fonts[1].type, "");
}

TEST(RequestParser, ToleratesBlankLinesCarriageReturnsUnknownElementsAndNoFonts) {
    const ParsedRequest parsed = parseRequest("\n<cmd>activationRequest</cmd>\r\n"
                                              "<futureHeader>x</futureHeader>\n\n"
                                              "<font>\r\n<containerID>12</containerID>\n"
                                              "<futureField>y</futureField>\n</font>\n"
                                              "</cmd>\n\n");
    ASSERT_TRUE(parsed.ok) << parsed.error;
    ASSERT_EQ(parsed.request.fonts.size(), 1u);
    EXPECT_EQ(parsed.request.fonts[0].containerID, "12");
    const ParsedRequest noFonts = parseRequest("<cmd>buyRequest</cmd>\n</cmd>\n");
    EXPECT_TRUE(noFonts.ok && noFonts.request.fonts.empty());
}

struct Malformed {
    std::string text;
    const char* reason;
};

class RequestParserRefuses : public testing::TestWithParam<Malformed> {};

TEST_P(RequestParserRefuses, WithAReason) {
    const ParsedRequest parsed = parseRequest(GetParam().text);
    EXPECT_FALSE(parsed.ok);
    EXPECT_NE(parsed.error.find(GetParam().reason), std::string::npos) << parsed.error;
}

INSTANTIATE_TEST_SUITE_P(
    Malformed, RequestParserRefuses,
    testing::Values(
        Malformed{"", "empty request"}, Malformed{"hello world", "begins with <cmd>"},
        Malformed{"<?xml version=\"1.0\"?><!DOCTYPE x [<!ENTITY a \"b\">]><cmd>x</cmd>",
                  "begins with <cmd>"},
        Malformed{"<cmd>fontRequest</cmd>\n<font>\n", "without its closing"},
        Malformed{"<cmd>fontRequest</cmd>\n<font>\n</cmd>\n", "inside an open <font>"},
        Malformed{"<cmd>fontRequest</cmd>\n</font>\n</cmd>\n", "</font> without <font>"},
        Malformed{"<cmd>fontRequest</cmd>\n<font>\n<font>\n</font>\n</cmd>\n",
                  "<font> inside <font>"},
        Malformed{"<cmd>fontRequest</cmd>\n<font>\n<syncID>1</syncID>\n<syncID>2</syncID>\n"
                  "</font>\n</cmd>\n",
                  "<syncID> given twice"},
        Malformed{"<cmd>fontRequest</cmd>\n<targetApp>a</targetApp>\n<targetApp>b</targetApp>\n"
                  "</cmd>\n",
                  "<targetApp> given twice"},
        Malformed{"<cmd>fontRequest</cmd>\n<psName>x</psname>\n</cmd>\n", "not an element line"},
        Malformed{"<cmd>fontRequest</cmd>\n</cmd>\n<psName>x</psName>\n", "after the closing"},
        Malformed{"<cmd>font Request</cmd>\n</cmd>\n", "begins with <cmd>"},
        Malformed{std::string("<cmd>x</cmd>\n\0\n</cmd>\n", 22), "NUL"}));

TEST(RequestParser, EnforcesItsLimits) {
    const RequestLimits limits{1000, 2, 100};
    const std::string font = "<font>\n<psName>A</psName>\n</font>\n";

    EXPECT_FALSE(parseRequest(std::string(1001, 'x'), limits).ok);
    EXPECT_TRUE(parseRequest("<cmd>c</cmd>\n" + font + font + "</cmd>\n", limits).ok);
    const ParsedRequest tooMany =
        parseRequest("<cmd>c</cmd>\n" + font + font + font + "</cmd>\n", limits);
    EXPECT_FALSE(tooMany.ok);
    EXPECT_NE(tooMany.error.find("more than 2 fonts"), std::string::npos);
    const ParsedRequest longLine = parseRequest(
        "<cmd>c</cmd>\n<font>\n<psName>" + std::string(200, 'n') + "</psName>\n</font>\n</cmd>\n",
        limits);
    EXPECT_FALSE(longLine.ok);
    EXPECT_NE(longLine.error.find("longer than"), std::string::npos);
}

} // namespace
} // namespace Vellumine
