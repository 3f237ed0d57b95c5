// How a run's face resolves through local attributes and style chains.
#include "HostTestSupport.h"
#include "host/document/FontUsage.h"
#include "host/session/SessionFontMgr.h"

#include <gtest/gtest.h>

using Galley::FontKey;
using HostTest::runFonts;

namespace {

class StyleResolution : public ::testing::Test {
protected:
    HostTest::TempDir dir;
    HostTest::FixedFaces faces;
    Galley::SessionFontMgr fonts{faces};
    std::unique_ptr<Galley::IdmlDocument> open(const std::string& description) {
        return HostTest::openDescribed(dir, fonts, description);
    }
};

TEST_F(StyleResolution, ParagraphStylesInheritAlongBasedOnChains) {
    auto doc = open(R"(
pstyle Base font="Nimbus Roman" style=Regular
pstyle Heading based=Base style=Bold
pstyle Subheading based=Heading
pstyle Caption based=Subheading font="DejaVu Sans" props
story
para pstyle=Subheading
run text="a"
para pstyle=Caption
run text="b"
)");
    EXPECT_EQ(runFonts(*doc),
              (std::vector<FontKey>{{"Nimbus Roman", "Bold"}, {"DejaVu Sans", "Bold"}}));
}

TEST_F(StyleResolution, LocalAttributesBeatStylesInBothForms) {
    auto doc = open(R"(
pstyle Body font="Nimbus Roman" style=Regular
cstyle Emph style=Italic
story
para pstyle=Body font="Paragraph Local"
run text="para-local family, para style face"
run cstyle=Emph text="character style face over paragraph"
run cstyle=Emph style=Bold text="attribute override"
run cstyle=Emph font="Run Font" style="Bold Italic" props text="properties override"
)");
    EXPECT_EQ(runFonts(*doc), (std::vector<FontKey>{{"Paragraph Local", "Regular"},
                                                    {"Paragraph Local", "Italic"},
                                                    {"Paragraph Local", "Bold"},
                                                    {"Run Font", "Bold Italic"}}));
}

TEST_F(StyleResolution, CharacterStyleChainsComeBeforeParagraphLevel) {
    auto doc = open(R"(
pstyle Body font="Nimbus Roman" style=Regular
cstyle Emph style=Italic
cstyle Strong based=Emph font="Nimbus Sans" props
story
para pstyle=Body font="Ignored Family" props
run cstyle=Strong text="x"
)");
    EXPECT_EQ(runFonts(*doc), (std::vector<FontKey>{{"Nimbus Sans", "Italic"}}));
}

TEST_F(StyleResolution, TextWithoutAnyFontGetsTheApplicationDefault) {
    auto doc = open("story\npara\nrun text=\"plain\"\n");
    EXPECT_EQ(runFonts(*doc),
              (std::vector<FontKey>{{Galley::kDefaultFontFamily, Galley::kDefaultFontStyle}}));
}

TEST_F(StyleResolution, RunsCountCharactersBreaksAndSkipEmptyRanges) {
    auto doc = open("story\npara\nrun text=\"h\xC3\xA9llo\\n\"\nrun text=\"\"\nrun text=\"x\"\n");
    const auto& story = *doc->stories().front();
    ASSERT_EQ(story.runs().size(), 2u);
    EXPECT_EQ(story.runs()[0].length, 6); // five code points and a break
    EXPECT_EQ(story.runs()[1].start, 6);
    EXPECT_EQ(story.length(), 7);
}

TEST_F(StyleResolution, DomVersionDecidesWhetherTheDocumentWasConverted) {
    EXPECT_TRUE(open("dom 6.0\nstory\npara\nrun text=\"a\"\n")->IsConverted());
    EXPECT_FALSE(open("dom 7.5\nstory\npara\nrun text=\"a\"\n")->IsConverted());
    EXPECT_FALSE(open("dom 20.0\nstory\npara\nrun text=\"a\"\n")->IsConverted());
    EXPECT_TRUE(Galley::isConvertedOnOpen(""));
}

} // namespace
