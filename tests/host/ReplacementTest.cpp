// Replacing a face: the plug-in's road through the SDK and Galley's own, in text and styles.
#include "HostTestSupport.h"
#include "host/document/FaceUse.h"
#include "host/document/FontReplacer.h"

namespace {

using Strings = std::vector<std::string>;
using Galley::FontKey;

class Replacement : public HostTest::SessionTest<VLMTest::ListedFaces> {
protected:
    void SetUp() override {
        faces.faces = {VLMTest::ListedFaces::face("DejaVuSerif", "DejaVu Serif", "Book", IPMFont::kTrueType)};
    }
    // The faces named by styles, "Family/Style" each once, in usage order.
    static Strings styleNamedFaces(Galley::IdmlDocument& doc) {
        Strings names;
        for (const Galley::FaceUse& use : Galley::describeFaceUse(doc))
            if (!use.styles.empty())
                names.push_back(use.key.family + "/" + use.key.style);
        return names;
    }
};

// Exports name a font missing where they were made by family and style alone. The plug-in
// finds and replaces faces by the PostScript name the host gives them; such a face gets one
// of its own ("Helvetica-Italic"), so both roads reach exactly its runs, tagged ones too.
TEST_F(Replacement, AFaceWithoutPostScriptNameIsReplacedOnBothRoads) {
    const char* description = R"(
font Helvetica Italic - Type1
font Helvetica Regular - Type1
story
para font=Helvetica style=Regular
run text="upright "
run style=Italic text="slanted "
run style=Italic wrap=xml text="tagged"
)";
    const Strings after{"Helvetica/Regular", "DejaVu Serif/Book", "DejaVu Serif/Book"};
    auto viaPlugin = open(description);
    IFontFamily* family = viaPlugin->InstantiateFontFamily(
        viaPlugin->GetDocFontMgr()->GetFontFamilyUID(PMString("Helvetica")));
    ASSERT_NE(family, nullptr);
    EXPECT_EQ(family->GetFacePostScriptName(PMString("Italic")).GetUTF8String(),
              "Helvetica-Italic");
    EXPECT_EQ(HostTest::replaceFontThroughSdk(viaPlugin.get(), "Helvetica-Italic", "DejaVuSerif"),
              2);
    EXPECT_EQ(HostTest::runFonts(*viaPlugin), after);

    auto viaGalley = open(description);
    const auto from = Galley::facesNamed(*viaGalley, "Helvetica Italic");
    ASSERT_EQ(from, (std::vector<FontKey>{{"Helvetica", "Italic"}}));
    EXPECT_EQ(Galley::replaceFaces(*viaGalley, from, {"DejaVu Serif", "Book"}, false).runsReplaced,
              2);
    EXPECT_EQ(HostTest::runFonts(*viaGalley), after);
    EXPECT_EQ(HostTest::usageNames(viaGalley->usage().missing()), Strings{"Helvetica/Regular"});
}

// With the styles, no style names the old face any more, only the styles that gave it are
// redefined, and text that inherited only part of its font from them keeps its face.
TEST_F(Replacement, RedefiningStylesLeavesNoStyleNamingTheOldFaceAndMovesNothingElse) {
    const char* description = R"(
proot font=Old style=Regular
pstyle Body
pstyle Head based=Body style=Bold
cstyle Code font=Old style=Regular
story
para pstyle=Body
run text="body "
run style=Italic text="italic "
run cstyle=Code text="code"
para pstyle=Head
run text="head"
)";
    auto textOnly = open(description);
    const std::vector<FontKey> old{{"Old", "Regular"}};
    auto result = Galley::replaceFaces(*textOnly, old, {"DejaVu Serif", "Book"}, false);
    EXPECT_EQ(result.runsReplaced, 2);
    EXPECT_TRUE(result.styles.empty());
    EXPECT_EQ(styleNamedFaces(*textOnly), (Strings{"Old/Bold", "Old/Regular"}));

    auto withStyles = open(description);
    result = Galley::replaceFaces(*withStyles, old, {"DejaVu Serif", "Book"}, true);
    EXPECT_EQ(result.styles, (Strings{"Code", "[No paragraph style]", "Body"}));
    EXPECT_EQ(result.runsKept, 1); // the italic run in Body
    EXPECT_EQ(HostTest::runFonts(*withStyles),
              (Strings{"DejaVu Serif/Book", "Old/Italic", "DejaVu Serif/Book", "Old/Bold"}));
    EXPECT_EQ(styleNamedFaces(*withStyles), (Strings{"Old/Bold", "DejaVu Serif/Book"}));
    EXPECT_TRUE(withStyles->IsModified());
}

// A range is split for a change that covers part of it, but never inside an element that
// wraps its text: that would copy the element and its Self. Nothing changes then.
TEST_F(Replacement, PartOfTaggedTextIsNotSplitOutOfItsElement) {
    auto doc = open("story\npara\nrun wrap=xml text=\"tagged\"\nrun text=\"plain\"\n");
    Galley::Story& story = *doc->stories().front();
    EXPECT_FALSE(story.applyLocalFont(2, 2, {std::string("X"), std::nullopt}));
    EXPECT_FALSE(story.modified());
    EXPECT_TRUE(story.applyLocalFont(0, 6, {std::string("X"), std::nullopt}));
    EXPECT_TRUE(story.applyLocalFont(8, 2, {std::string("Y"), std::nullopt}));
    const std::string roman = "/" + std::string(Galley::kDefaultFontStyle);
    EXPECT_EQ(HostTest::runFonts(*doc),
              (Strings{"X" + roman, std::string(Galley::kDefaultFontFamily) + roman, "Y" + roman,
                       std::string(Galley::kDefaultFontFamily) + roman}));
}

} // namespace
