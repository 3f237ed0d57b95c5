#include "foundation/Exception.h"
#include "foundation/IXmlParser.h"
#include "link/FontInfo.h"

#include <gtest/gtest.h>

namespace {

TEST(FontRecord, TypeTexts) {
    struct Row {
        int type;
        const char* technology;
        const char* wire;
    };
    const Row rows[] = {{0, "PostScript", "T1"},
                        {1, "TrueType", "TT"},
                        {2, "OpenType PostScript", "OT_T1"},
                        {3, "OpenType TrueType", "OT_TT"},
                        {4, "Unknown", ""},
                        {-1, "Unknown", ""},
                        {5, "Unknown", ""}};
    for (const Row& row : rows) {
        VLMFontInfo record;
        record.font.type = row.type;
        EXPECT_EQ(record.getTechnology(), row.technology) << row.type;
        EXPECT_EQ(record.getTypeString(), row.wire) << row.type;
    }
}

TEST(FontRecord, LenientConverterTakesEveryTextStrictOneRaises) {
    for (int type = 0; type <= 3; ++type) {
        VLMFontInfo record;
        record.font.type = type;
        EXPECT_EQ(VLMFontInfo::typeStringToEnum(record.getTypeString()), type);
        EXPECT_EQ(Protocol::Font::stringToType(record.getTypeString()), type);
    }
    EXPECT_EQ(VLMFontInfo::typeStringToEnum("all"), 4);
    EXPECT_EQ(Protocol::Font::stringToType("all"), 4);
    EXPECT_EQ(VLMFontInfo::typeStringToEnum("ot_tt"), 4);
    EXPECT_EQ(VLMFontInfo::typeStringToEnum(""), 4);
    try {
        Protocol::Font::stringToType("ot_tt");
        FAIL() << "lower-case type accepted";
    } catch (const Tamrik::Exception& error) {
        EXPECT_EQ(error.getUserMessage(), "could not parse <font><type>ot_tt</type>...");
        EXPECT_EQ(error.getFile(), "protocol");
        EXPECT_EQ(error.getLine(), 69u);
    }
}

TEST(HandlerHelpers, OnlyTheExactWordTrueIsTrue) {
    EXPECT_TRUE(Protocol::HandlerHelpers::parseBoolean("true"));
    for (const char* text : {"TRUE", "1", "yes", "", " true", "true "}) {
        EXPECT_FALSE(Protocol::HandlerHelpers::parseBoolean(text)) << '"' << text << '"';
    }
}

class FontInfoElement : public ::testing::Test {
protected:
    const Tamrik::IXmlNode* parse(const std::string& text) {
        parser->parseString(text);
        return parser->getRootNode();
    }
    Tamrik::SmartPointer<Tamrik::IXmlParser> parser =
        Tamrik::IXmlParser::getInstance("LibXmlParser");
};

TEST_F(FontInfoElement, TakesTheFirstTwoElementsWhateverTheirNames) {
    auto info = Protocol::HandlerHelpers::parseFontInfo(
        parse("<fontInfo> <b>Foundry</b><!-- note --> <a>Tamrik</a><c>ignored</c></fontInfo>"));
    EXPECT_EQ(info.first, "Foundry");
    EXPECT_EQ(info.second, "Tamrik");
}

TEST_F(FontInfoElement, MissingElementsGiveEmptyTexts) {
    auto one = Protocol::HandlerHelpers::parseFontInfo(parse("<fontInfo><x>only</x></fontInfo>"));
    EXPECT_EQ(one.first, "only");
    EXPECT_EQ(one.second, "");
    auto none = Protocol::HandlerHelpers::parseFontInfo(parse("<fontInfo>text</fontInfo>"));
    EXPECT_EQ(none.first, "");
    EXPECT_EQ(none.second, "");
}

} // namespace
