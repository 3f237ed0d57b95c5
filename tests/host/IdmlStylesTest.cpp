// How a run's face resolves through local attributes and style chains.
#include "HostTestSupport.h"
#include "host/document/FontUsage.h"

namespace {

using StyleResolution = HostTest::SessionTest<HostTest::FixedFaces>;

// Local attributes (both forms) beat the character style chain, which beats paragraph-level
// attributes and then the paragraph style chain; with none of them, the application default.
TEST_F(StyleResolution, RunFacesFollowLocalAttributesThenCharacterThenParagraphChains) {
    auto doc = open(R"(
pstyle Base font="Nimbus Roman" style=Regular
pstyle Heading based=Base style=Bold
pstyle Subheading based=Heading
pstyle Caption based=Subheading font="DejaVu Sans" props
cstyle Emph style=Italic
cstyle Strong based=Emph font="Nimbus Sans" props
story
para pstyle=Subheading
run text="a"
para pstyle=Caption
run text="b"
para pstyle=Base font="Para Local"
run text="c"
run cstyle=Emph text="d"
run cstyle=Emph style=Bold text="e"
run cstyle=Emph font="Run Font" style="Bold Italic" props text="f"
para pstyle=Base font="Ignored" style=Light props
run cstyle=Strong text="g"
run text="h"
story
para
run text="i"
)");
    EXPECT_EQ(
        HostTest::runFonts(*doc),
        (std::vector<std::string>{
            "Nimbus Roman/Bold", "DejaVu Sans/Bold", "Para Local/Regular", "Para Local/Italic",
            "Para Local/Bold", "Run Font/Bold Italic", "Nimbus Sans/Italic", "Ignored/Light",
            std::string(Galley::kDefaultFontFamily) + "/" + Galley::kDefaultFontStyle}));
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
    for (auto [dom, converted] : {std::pair{"6.0", true}, {"7.5", false}, {"20.0", false}})
        EXPECT_EQ(open("dom " + std::string(dom) + "\nstory\n")->IsConverted(), converted) << dom;
    EXPECT_TRUE(Galley::isConvertedOnOpen(""));
}

} // namespace
