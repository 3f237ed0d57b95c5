#include "foundation/ConvertUTF.h"
#include "foundation/HostText.h"
#include "foundation/NumberText.h"
#include "foundation/Tokenize.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using Strings = std::vector<std::string>;

TEST(TokenizeTest, SplitsOnAnyDelimiterKeepingEmptyTokensUnlessAskedToSkipThem) {
    const struct {
        const char* text;
        const char* delimiters;
        bool skipEmpty;
        Strings tokens;
    } rows[] = {{"a,,b", ",", false, {"a", "", "b"}},  {"a,,b", ",", true, {"a", "b"}},
                {"a,", ",", false, {"a", ""}},         {",a", ",", false, {"", "a"}},
                {"", ",", false, {""}},                {"", ",", true, {}},
                {",,,", ",", true, {}},                {"2.7;1", ".;", true, {"2", "7", "1"}},
                {"  Times  ", " ", true, {"Times"}},   {"abc", "", false, {"abc"}}};
    for (const auto& row : rows) {
        EXPECT_EQ(Tamrik::tokenize(row.text, row.delimiters, row.skipEmpty), row.tokens)
            << '"' << row.text << "\" by \"" << row.delimiters << '"';
    }
}

TEST(NumberTextTest, PrintsPlainDecimalAndParsesTheFront) {
    EXPECT_EQ(Tamrik::toString(-7), "-7");
    EXPECT_EQ(Tamrik::toString(4294967295ul), "4294967295");
    EXPECT_EQ(Tamrik::toString(5, 3), "  5");
    const struct {
        const char* text;
        unsigned long value;
        bool ok;
    } rows[] = {{"12abc", 12, true}, {"  7", 7, true}, {"abc", 0, false}, {"", 0, false}};
    for (const auto& row : rows) {
        bool ok = !row.ok;
        EXPECT_EQ(Tamrik::safeParse<unsigned long>(row.text, ok), row.value) << row.text;
        EXPECT_EQ(ok, row.ok) << row.text;
    }
    bool ok = false;
    EXPECT_EQ(Tamrik::safeParse<int>("-3", ok), -3);
}

namespace {

struct Utf8Result {
    Tamrik::UTF::ConversionResult result;
    std::string bytes;
    std::size_t consumed;
};

Utf8Result convert(const std::vector<Tamrik::UTF::UTF32>& points, std::size_t room) {
    using namespace Tamrik::UTF;
    std::vector<UTF8> buffer(room);
    const UTF32* source = points.data();
    UTF8* target = buffer.data();
    const ConversionResult result = ConvertUTF32toUTF8(
        &source, points.data() + points.size(), &target, buffer.data() + room, strictConversion);
    return {result, std::string(buffer.begin(), buffer.begin() + (target - buffer.data())),
            static_cast<std::size_t>(source - points.data())};
}

} // namespace

// Too large a code point is replaced and conversion goes on; a surrogate or a full
// buffer stops it before the offending character.
TEST(ConvertUTFTest, EncodesEachLengthAndReportsProblems) {
    using namespace Tamrik::UTF;
    const struct {
        std::vector<UTF32> points;
        std::size_t room;
        ConversionResult result;
        std::string bytes;
        std::size_t consumed;
    } rows[] = {{{0x41, 0xE9, 0x4E2D, 0x1F600}, 16, conversionOK,
                 "A\xC3\xA9\xE4\xB8\xAD\xF0\x9F\x98\x80", 4},
                {{0x41, 0x110000, 0x42}, 16, sourceIllegal, "A\xEF\xBF\xBD" "B", 3},
                {{0x41, 0xD800, 0x42}, 16, sourceIllegal, "A", 1},
                {{0x41, 0x4E2D}, 3, targetExhausted, "A", 1}};
    for (const auto& row : rows) {
        const Utf8Result converted = convert(row.points, row.room);
        EXPECT_EQ(converted.result, row.result) << row.bytes;
        EXPECT_EQ(converted.bytes, row.bytes);
        EXPECT_EQ(converted.consumed, row.consumed) << row.bytes;
    }
}

TEST(HostTextTest, ThousandCJKCharactersNeedOneBufferDoubling) {
    WideString wide;
    for (int i = 0; i < 1000; ++i) {
        wide.Append(0x4E00 + static_cast<char32_t>(i));
    }
    Helpers::ConversionStats stats;
    const std::string utf8 = Helpers::convertToUTF8(wide, &stats);
    EXPECT_EQ(utf8.size(), 3000u);
    EXPECT_EQ(stats.attempts, 2);
    EXPECT_EQ(stats.finalBufferSize, 4002u);
    EXPECT_EQ(utf8.substr(0, 3), "\xE4\xB8\x80");
}

TEST(HostTextTest, SurrogatePairsAreOneCharacterAndLoneOnesGiveNothing) {
    const WideString pair(u"a\U0001F600b");
    EXPECT_EQ(pair.UTF16Count(), 4u);
    EXPECT_EQ(pair.CharCount(), 3u);
    EXPECT_EQ(pair.GetCodePoint(1), U'\U0001F600');
    EXPECT_EQ(Helpers::convertToUTF8(pair), "a\xF0\x9F\x98\x80"
                                            "b");

    EXPECT_EQ(Helpers::convertToUTF8(WideString(std::u16string(1, char16_t(0xD800)))), "");
    std::u16string mixed = u"\U0001F600";
    mixed += char16_t(0xDC00); // a pair followed by a lone low surrogate
    EXPECT_EQ(Helpers::convertToUTF8(WideString(mixed)), "");
    EXPECT_EQ(Helpers::convertToUTF8(WideString()), "");
}

TEST(HostTextTest, HostStringsRoundTripThroughUTF8) {
    const std::string text = "Zapf Dingbats \xE2\x80\x94 Caf\xC3\xA9 \xF0\x9F\x98\x80";
    const PMString host(text.c_str());
    EXPECT_EQ(Helpers::toString(host), text);
    EXPECT_EQ(host.CharCount(), 22u);
    // Malformed UTF-8 never breaks the string: each bad byte becomes U+FFFD.
    EXPECT_EQ(PMString("a\xFF"
                       "b")
                  .GetUTF8String(),
              "a\xEF\xBF\xBD"
              "b");
}
