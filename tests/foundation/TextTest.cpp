#include "foundation/ConvertUTF.h"
#include "foundation/HostText.h"
#include "foundation/NumberText.h"
#include "foundation/Tokenize.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using Strings = std::vector<std::string>;

TEST(TokenizeTest, KeepsEmptyTokensUnlessAskedToSkipThem) {
    EXPECT_EQ(Tamrik::tokenize("a,,b", ",", false), (Strings{"a", "", "b"}));
    EXPECT_EQ(Tamrik::tokenize("a,,b", ",", true), (Strings{"a", "b"}));
    EXPECT_EQ(Tamrik::tokenize("a,", ",", false), (Strings{"a", ""}));
    EXPECT_EQ(Tamrik::tokenize(",a", ",", false), (Strings{"", "a"}));
    EXPECT_EQ(Tamrik::tokenize("", ",", false), (Strings{""}));
    EXPECT_EQ(Tamrik::tokenize("", ",", true), (Strings{}));
    EXPECT_EQ(Tamrik::tokenize(",,,", ",", true), (Strings{}));
}

TEST(TokenizeTest, AnyDelimiterCharacterSplits) {
    EXPECT_EQ(Tamrik::tokenize("2.7;1", ".;", true), (Strings{"2", "7", "1"}));
    EXPECT_EQ(Tamrik::tokenize("Times Roman", " ", true), (Strings{"Times", "Roman"}));
    EXPECT_EQ(Tamrik::tokenize("  Times  ", " ", true), (Strings{"Times"}));
    EXPECT_EQ(Tamrik::tokenize("abc", "", false), (Strings{"abc"}));
}

TEST(NumberTextTest, PrintsPlainDecimalAndParsesTheFront) {
    EXPECT_EQ(Tamrik::toString(42), "42");
    EXPECT_EQ(Tamrik::toString(-7), "-7");
    EXPECT_EQ(Tamrik::toString(4294967295ul), "4294967295");
    EXPECT_EQ(Tamrik::toString(5, 3), "  5");

    bool ok = false;
    EXPECT_EQ(Tamrik::safeParse<unsigned long>("12abc", ok), 12u);
    EXPECT_TRUE(ok);
    EXPECT_EQ(Tamrik::safeParse<unsigned long>("  7", ok), 7u);
    EXPECT_TRUE(ok);
    EXPECT_EQ(Tamrik::safeParse<unsigned long>("abc", ok), 0u);
    EXPECT_FALSE(ok);
    EXPECT_EQ(Tamrik::safeParse<unsigned long>("", ok), 0u);
    EXPECT_FALSE(ok);
    EXPECT_EQ(Tamrik::safeParse<int>("-3", ok), -3);
    EXPECT_TRUE(ok);
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

TEST(ConvertUTFTest, EncodesEachLengthAndReportsProblems) {
    using namespace Tamrik::UTF;
    const Utf8Result all = convert({0x41, 0xE9, 0x4E2D, 0x1F600}, 16);
    EXPECT_EQ(all.result, conversionOK);
    EXPECT_EQ(all.bytes, "A\xC3\xA9\xE4\xB8\xAD\xF0\x9F\x98\x80");

    const Utf8Result tooBig = convert({0x41, 0x110000, 0x42}, 16);
    EXPECT_EQ(tooBig.result, sourceIllegal); // replaced and carried on
    EXPECT_EQ(tooBig.bytes, "A\xEF\xBF\xBD"
                            "B");

    const Utf8Result surrogate = convert({0x41, 0xD800, 0x42}, 16);
    EXPECT_EQ(surrogate.result, sourceIllegal);
    EXPECT_EQ(surrogate.consumed, 1u); // stopped on the surrogate
    EXPECT_EQ(surrogate.bytes, "A");

    const Utf8Result full = convert({0x41, 0x4E2D}, 3); // 1 + 3 bytes do not fit in 3
    EXPECT_EQ(full.result, targetExhausted);
    EXPECT_EQ(full.consumed, 1u);
    EXPECT_EQ(full.bytes, "A");
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
