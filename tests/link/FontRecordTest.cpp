#include "foundation/Exception.h"
#include "foundation/IXmlParser.h"
#include "link/FontInfo.h"

#include <gtest/gtest.h>
#include <gmock/gmock.h>

namespace {

TEST(FontRecord, TypeTexts) {
    EXPECT_EQ(VLMFontInfo().font.type, 4); // unknown: left out of requests
    const struct {
        int type;
        const char* technology;
        const char* wire;
    } rows[] = {{0, "PostScript", "T1"},
                {1, "TrueType", "TT"},
                {2, "OpenType PostScript", "OT_T1"},
                {3, "OpenType TrueType", "OT_TT"},
                {4, "Unknown", ""},
                {-1, "Unknown", ""},
                {5, "Unknown", ""}};
    for (const auto& row : rows) {
        VLMFontInfo record;
        record.font.type = row.type;
        EXPECT_EQ(record.getTechnology(), row.technology) << row.type;
        EXPECT_EQ(record.getTypeString(), row.wire) << row.type;
        if (row.type >= 0 && row.type <= 3) {
            EXPECT_EQ(VLMFontInfo::typeStringToEnum(row.wire), row.type);
            EXPECT_EQ(Protocol::Font::stringToType(row.wire), row.type);
        }
    }
}

TEST(FontRecord, LenientConverterTakesEveryTextStrictOneRaises) {
    for (const char* text : {"all", "ot_tt", ""}) {
        EXPECT_EQ(VLMFontInfo::typeStringToEnum(text), 4) << text;
    }
    EXPECT_EQ(Protocol::Font::stringToType("all"), 4);
    EXPECT_THAT([] { Protocol::Font::stringToType("ot_tt"); },
                testing::ThrowsMessage<Tamrik::Exception>(
                    testing::StrEq("Exception in file 'protocol' at line 69\n    User Message : "
                                   "could not parse <font><type>ot_tt</type>...")));
}

TEST(HandlerHelpers, OnlyTheExactWordTrueIsTrue) {
    EXPECT_TRUE(Protocol::HandlerHelpers::parseBoolean("true"));
    for (const char* text : {"TRUE", "1", "yes", "", " true", "true "}) {
        EXPECT_FALSE(Protocol::HandlerHelpers::parseBoolean(text)) << '"' << text << '"';
    }
}

// The first two child elements whatever their names; missing ones give empty texts.
TEST(HandlerHelpers, FontInfoTakesTheFirstTwoElements) {
    const struct {
        const char* xml;
        const char* first;
        const char* second;
    } rows[] = {{"<fontInfo> <b>Foundry</b><!-- c --> <a>Tamrik</a><c>x</c></fontInfo>", "Foundry",
                 "Tamrik"},
                {"<fontInfo>text<x>only</x></fontInfo>", "only", ""}};
    for (const auto& row : rows) {
        auto parser = Tamrik::IXmlParser::getInstance("LibXmlParser");
        parser->parseString(row.xml);
        const auto info = Protocol::HandlerHelpers::parseFontInfo(parser->getRootNode());
        EXPECT_EQ(info.first, row.first) << row.xml;
        EXPECT_EQ(info.second, row.second) << row.xml;
    }
}

} // namespace
