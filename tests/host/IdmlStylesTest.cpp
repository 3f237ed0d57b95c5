// How a run's face resolves through local attributes and style chains.
#include "HostTestSupport.h"
#include "host/document/FontUsage.h"

namespace {

using StyleResolution = HostTest::SessionTest<VLMTest::ListedFaces>;
using Strings = std::vector<std::string>;

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
        (Strings{"Nimbus Roman/Bold", "DejaVu Sans/Bold", "Para Local/Regular", "Para Local/Italic",
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

// Every shape of an exported document: the root style's defaults, BasedOn by Name and by
// Self in style groups, and text in an XML element, a footnote, a table cell, a note and an
// anchored frame (a story of its own, listed last).
TEST_F(StyleResolution, ExportedSampleResolvesEveryShapeToTheFontsItsStylesName) {
    auto doc = open(HostTest::readFile(GALLEY_TEST_DATA "/exported.idmldesc"));
    EXPECT_EQ(HostTest::runFonts(*doc),
              (Strings{"TeX Gyre Heros/Bold", "C059/Roman", "C059/Italic", "Nimbus Mono PS/Regular",
                       "Nimbus Mono PS/Regular", "Nimbus Sans/Regular", "Nimbus Mono PS/Regular",
                       "Gothic Composite/Roman", "Nimbus Sans/Black", "URW Gothic/Book",
                       "TeX Gyre Heros/Italic", "DejaVu Sans/Bold", "DejaVu Sans/Book"}));
    const auto& runs = doc->stories().front()->runs();
    EXPECT_EQ(runs[0].length, 16); // a special character, 14 letters and a break
    EXPECT_EQ(runs[1].length, 18); // "Cafés & bookshops " written as character references
    // A composite font stands for its faces; no face is installed here.
    EXPECT_EQ(HostTest::usageNames(doc->usage().missing()),
              (Strings{"TeX Gyre Heros/Bold", "C059/Roman", "C059/Italic", "Nimbus Mono PS/Regular",
                       "Nimbus Sans/Regular", "URW Gothic/Book", "Nimbus Sans/Black",
                       "TeX Gyre Heros/Italic", "DejaVu Sans/Bold", "DejaVu Sans/Book"}));
}

// Exports of tagged layouts put the text of a range inside XML elements, hyperlink sources
// and tracked changes: it counts, reads and resolves like text directly in the range, while
// a range nested deeper (a footnote's) still forms runs of its own.
TEST_F(StyleResolution, TaggedTextIsReadAtAnyDepthBelowItsRange) {
    struct Case {
        const char* wrap;
        const char* description; // the run's text as the description writes it
        const char* text;        // as the story reads it
        int length;
    } cases[] = {{"xml", "And a subtitle", "And a subtitle", 14},
                 {"xml,link", "Tagged \xC3\xA9 link", "Tagged \xC3\xA9 link", 13},
                 {"xml,xml,change", "Deep\\n", "Deep\n", 5}};
    const std::string roman = std::string(Galley::kDefaultFontFamily) + "/Regular";
    for (const Case& c : cases) {
        auto doc = open(std::string("story\npara\nrun text=\"A \"\n") +
                        "run font=Vollkorn style=Italic props wrap=" + c.wrap + " text=\"" +
                        c.description + "\"\nrun in=footnote font=Note text=\"n\"\n");
        const Galley::Story& story = *doc->stories().front();
        Strings texts;
        for (const auto& run : story.runs())
            texts.push_back(Galley::Story::text(run));
        EXPECT_EQ(texts, (Strings{"A ", c.text, "n"})) << c.wrap;
        EXPECT_EQ(story.runs()[1].length, c.length) << c.wrap;
        EXPECT_EQ(story.length(), 2 + c.length + 1) << c.wrap;
        EXPECT_EQ(HostTest::runFonts(*doc), (Strings{roman, "Vollkorn/Italic", "Note/Regular"}))
            << c.wrap;
        EXPECT_EQ(HostTest::usageNames(doc->usage().missing()),
                  (Strings{roman, "Vollkorn/Italic", "Note/Regular"}))
            << c.wrap;
    }
}

TEST_F(StyleResolution, RootStylesCarryTheDefaultsAndBasedOnNamesParentsEitherWay) {
    const std::string roman = std::string(Galley::kDefaultFontFamily) + "/Roman";
    struct Case {
        const char* description;
        Strings fonts;
    } cases[] = {
        // the paragraph root's values reach styles without a parent and text without a style
        {"proot font=Root style=Book\npstyle Body\nstory\npara pstyle=Body\nrun text=a\n"
         "para\nrun text=b\n",
         {"Root/Book", "Root/Book"}},
        {"proot style=Roman props\nstory\npara\nrun text=a\n", {roman}},
        // the character root is the weakest level: below the whole paragraph chain
        {"croot font=CRoot style=Medium\npstyle Body style=Bold\ncstyle Em font=EmFont\nstory\n"
         "para pstyle=Body\nrun text=a\nrun cstyle=Em text=b\n",
         {"CRoot/Bold", "EmFont/Bold"}},
        {"croot font=CRoot\nproot font=PRoot\ncstyle Em based=\"$ID/[No character style]\" "
         "basedby=name style=Italic\nstory\npara\nrun cstyle=Em text=a\n",
         {"PRoot/Italic"}},
        // parents by Name (with or without "$ID/") or by Self, inside groups, both kinds
        {"proot font=R\npstyle Body based=\"[No paragraph style]\" basedby=name\nstory\n"
         "para pstyle=Body\nrun text=a\n",
         {"R/Regular"}},
        {"pstyle Base group=G font=GroupFont\npstyle Child group=H based=Base basedby=name "
         "style=Heavy\ncstyle CBase group=C font=CFont\ncstyle ByName based=CBase basedby=name\n"
         "cstyle BySelf group=C based=CBase\nstory\npara pstyle=Child\nrun text=a\n"
         "run cstyle=ByName text=b\nrun cstyle=BySelf text=c\n",
         {"GroupFont/Heavy", "CFont/Heavy", "CFont/Heavy"}},
    };
    for (const Case& c : cases)
        EXPECT_EQ(HostTest::runFonts(*open(c.description)), c.fonts) << c.description;
}

} // namespace
