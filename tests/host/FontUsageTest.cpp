// The document's font usage through the SDK, against a fixed set of installed faces.
#include "HostTestSupport.h"
#include "sdk/HostIdentifiers.h"
#include "sdk/IDocumentFontUsage.h"

constexpr auto face = &VLMTest::ListedFaces::face;
using Strings = std::vector<std::string>;

namespace {

using FontUsage = HostTest::SessionTest<VLMTest::ListedFaces>;

const char* kMixed = R"(
font "Nimbus Roman" Regular NimbusRoman-Regular Type1
font "Old Face" Bold OldFace-Bold OpenTypeCFF
pstyle Body font="Nimbus Roman" style=Regular
pstyle Unused font="Style Only" style=Light
cstyle Loud font="Old Face" style=Bold
story
para pstyle=Body
run text="a"
run cstyle=Loud text="b"
run text="c"
story
para pstyle=Body
run font="DejaVu Sans" style=Book props text="d"
)";

// Each face once, text first then styles; a face recorded in Fonts.xml is matched by its
// PostScript name, whatever the family it is installed under, and never by family alone.
TEST_F(FontUsage, UsedAndMissingAgainstTheInstalledFaces) {
    struct Case {
        std::vector<Galley::InstalledFace> installed;
        Strings used, missing;
    } cases[] = {
        {{face("NimbusRoman-Regular", "Nimbus Roman", "Regular", IPMFont::kType1),
          face("DejaVuSans", "dejavu sans", "BOOK", IPMFont::kTrueType)},
         {"Nimbus Roman/Regular", "DejaVu Sans/Book"},
         {"Old Face/Bold", "Style Only/Light"}},
        {{face("OldFace-Bold", "Renamed Family", "Heavy", IPMFont::kOpenTypeCFF),
          face("Impostor-Regular", "Nimbus Roman", "Regular", IPMFont::kTrueType)},
         {"Old Face/Bold"},
         {"Nimbus Roman/Regular", "DejaVu Sans/Book", "Style Only/Light"}},
    };
    for (const Case& c : cases) {
        faces.faces = c.installed;
        session.reset();
        auto doc = open(kMixed);
        EXPECT_EQ(HostTest::usageNames(doc->usage().used()), c.used);
        EXPECT_EQ(HostTest::usageNames(doc->usage().missing()), c.missing);
    }
}

// Another face of the family never stands in for a missing one; a composite font counts as
// the faces it is made of, and its text shows as the first of them.
TEST_F(FontUsage, OtherFacesOfAFamilyNeverStandInAndCompositesCountAsTheirFaces) {
    faces.faces = {face("NimbusSans-Regular", "Nimbus Sans", "Regular", IPMFont::kType1),
                   face("URWGothic-Book", "URW Gothic", "Book", IPMFont::kOpenTypeCFF)};
    auto doc = open("composite Mixed \"URW Gothic\" Book \"Nimbus Sans\" Bold\nstory\n"
                    "para font=\"Nimbus Sans\" style=Black\nrun text=a\nrun font=Mixed text=b\n");
    EXPECT_EQ(HostTest::usageNames(doc->usage().used()), Strings{"URW Gothic/Book"});
    EXPECT_EQ(HostTest::usageNames(doc->usage().missing()),
              (Strings{"Nimbus Sans/Black", "Nimbus Sans/Bold"}));
    ITextModel* model = doc->GetDataBase()->InstantiateTextModel(doc->GetNthTextModelUID(0));
    IComposeScanner* scanner = model->QueryComposeScanner();
    EXPECT_EQ(scanner->QueryFontFamilyAttribute(1, 2)->GetUIDData(),
              doc->GetDocWorkSpace()->GetDocFontMgr()->GetFontFamilyUID(PMString("URW Gothic")));
    EXPECT_EQ(scanner->QueryFontFaceAttribute(1, 2)->GetFontName().GetUTF8String(), "Book");
}

TEST_F(FontUsage, FamiliesThroughTheSdkKeepTheirUidsAndReportNamesAndTypes) {
    faces.faces = {face("NimbusRoman-Regular", "Nimbus Roman", "Regular", IPMFont::kType1),
                   face("NimbusRoman-Regular", "Nimbus Roman", "Regular", IPMFont::kOpenTypeCFF),
                   face("DejaVuSans", "DejaVu Sans", "Book", IPMFont::kTrueType)};
    auto doc = open(kMixed);
    IDocumentFontUsage* usage = doc->GetDocumentFontUsage();
    IDataBase* db = doc->GetDataBase();
    ASSERT_EQ(usage->GetUsedFontCount(), 2);
    UID roman = usage->GetUsedNthFontFamilyUID(0);
    usage->Update();
    EXPECT_EQ(usage->GetUsedNthFontFamilyUID(0), roman);
    EXPECT_EQ(usage->GetMissingNthFontFamilyUID(7), kInvalidUID);
    EXPECT_EQ(db->InstantiateFontFamily(kInvalidUID), nullptr);

    // Both formats carry the name; the document recorded Type 1, so Type 1 it is.
    IFontFamily* family = db->InstantiateFontFamily(roman);
    ASSERT_NE(family, nullptr);
    EXPECT_EQ(family->GetFaceFontType(PMString("Regular")), IPMFont::kType1);
    EXPECT_EQ(family->GetFacePostScriptName(PMString("Regular")).GetUTF8String(),
              "NimbusRoman-Regular");

    IFontFamily* missing = db->InstantiateFontFamily(usage->GetMissingNthFontFamilyUID(0));
    ASSERT_NE(missing, nullptr);
    EXPECT_EQ(missing->GetFacePostScriptName(PMString("Bold")).GetUTF8String(), "OldFace-Bold");
    EXPECT_EQ(missing->GetFaceFontType(PMString("Bold")), IPMFont::kOpenTypeCFF);
    EXPECT_EQ(missing->QueryFace(PMString("Bold")), nullptr);
    PMString hostName;
    missing->GetHostFamilyName(hostName);
    EXPECT_EQ(hostName.GetUTF8String(), "Old Face");
}

TEST_F(FontUsage, FontListUpdateAnnouncesOnlyRealChanges) {
    faces.faces = {face("A-Regular", "A", "Regular", IPMFont::kOpenTypeCFF)};
    HostTest::RecordingObserver observer;
    fonts().GetSubject()->AttachObserver(&observer, IID_IFONTMGR);
    EXPECT_FALSE(fonts().UpdateFontList()); // folders unchanged: nothing re-read
    faces.changed = true;
    EXPECT_FALSE(fonts().UpdateFontList()); // re-read, same faces
    EXPECT_TRUE(observer.changes.empty());

    IPMFont* before = fonts().QueryFont(PMString("A-Regular"));
    faces.faces.push_back(face("B-Bold", "B", "Bold", IPMFont::kTrueType));
    faces.changed = true;
    EXPECT_TRUE(fonts().UpdateFontList());
    EXPECT_EQ(observer.changes,
              (decltype(observer.changes){{kFontSystemChangedMessage, IID_IFONTMGR}}));
    EXPECT_EQ(fonts().GetFontCount(false, IFontMgr::kAllFonts), 2);
    EXPECT_EQ(fonts().QueryFont(PMString("A-Regular")), before); // handed-out fonts stay valid
    fonts().GetSubject()->DetachObserver(&observer, IID_IFONTMGR);
}

TEST_F(FontUsage, QueryFontAcceptsTheHostsFormsOfAName) {
    faces.faces = {face("Sans-Bold", "Sans", "Bold", IPMFont::kTrueType),
                   face("Sans-Regular", "Sans", "Regular", IPMFont::kTrueType)};
    for (auto [name, postscript] : {std::pair{"Sans-Bold", "Sans-Bold"},
                                    {"Sans\tBold", "Sans-Bold"},
                                    {"sans bold", "Sans-Bold"},
                                    {"Sans", "Sans-Regular"},
                                    {"Serif", "(none)"}}) {
        IPMFont* font = fonts().QueryFont(PMString(name));
        EXPECT_EQ(font ? font->GetPostScriptName().GetUTF8String() : "(none)", postscript) << name;
    }
    EXPECT_EQ(fonts().GetNumFontFamilies(), 1);
    EXPECT_EQ(fonts().GetNthFontFamily(1), nullptr);
}

} // namespace
