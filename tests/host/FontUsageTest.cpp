// The document's font usage through the SDK, against a fixed set of installed faces.
#include "HostTestSupport.h"
#include "host/session/SessionFontMgr.h"
#include "sdk/HostIdentifiers.h"
#include "sdk/IDataBase.h"
#include "sdk/IDocumentFontUsage.h"
#include "sdk/IFontFamily.h"

#include <gtest/gtest.h>

using HostTest::face;
using HostTest::usageNames;
using Strings = std::vector<std::string>;

namespace {

class FontUsage : public ::testing::Test {
protected:
    HostTest::TempDir dir;
    HostTest::FixedFaces faces;
    std::unique_ptr<Galley::SessionFontMgr> fonts;
    std::unique_ptr<Galley::IdmlDocument> open(const std::string& description) {
        fonts = std::make_unique<Galley::SessionFontMgr>(faces);
        return HostTest::openDescribed(dir, *fonts, description);
    }
};

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

TEST_F(FontUsage, EachFaceOnceTextFirstThenStylesSplitAgainstTheSystem) {
    faces.faces = {face("NimbusRoman-Regular", "Nimbus Roman", "Regular", IPMFont::kType1),
                   face("DejaVuSans", "dejavu sans", "BOOK", IPMFont::kTrueType)};
    auto doc = open(kMixed);
    EXPECT_EQ(usageNames(doc->usage().used()),
              (Strings{"Nimbus Roman/Regular", "DejaVu Sans/Book"}));
    EXPECT_EQ(usageNames(doc->usage().missing()), (Strings{"Old Face/Bold", "Style Only/Light"}));
}

TEST_F(FontUsage, PostScriptNameFromTheDocumentDecidesOverFamilyName) {
    // Installed under another family name, but with the PostScript name the document records.
    faces.faces = {face("OldFace-Bold", "Renamed Family", "Heavy", IPMFont::kOpenTypeCFF),
                   // Same family and style as the document, but another PostScript name.
                   face("Impostor-Regular", "Nimbus Roman", "Regular", IPMFont::kTrueType)};
    auto doc = open(kMixed);
    EXPECT_EQ(usageNames(doc->usage().used()), (Strings{"Old Face/Bold"}));
    EXPECT_EQ(usageNames(doc->usage().missing()),
              (Strings{"Nimbus Roman/Regular", "DejaVu Sans/Book", "Style Only/Light"}));
}

TEST_F(FontUsage, FamiliesThroughTheSdkKeepTheirUidsAndReportNamesAndTypes) {
    faces.faces = {
        face("NimbusRoman-Regular", "Nimbus Roman", "Regular", IPMFont::kType1, "/a.t1"),
        face("NimbusRoman-Regular", "Nimbus Roman", "Regular", IPMFont::kOpenTypeCFF, "/a.otf"),
        face("DejaVuSans", "DejaVu Sans", "Book", IPMFont::kTrueType)};
    auto doc = open(kMixed);
    IDocumentFontUsage* usage = doc->GetDocumentFontUsage();
    ASSERT_EQ(usage->GetUsedFontCount(), 2);
    UID roman = usage->GetUsedNthFontFamilyUID(0);
    usage->Update();
    EXPECT_EQ(usage->GetUsedNthFontFamilyUID(0), roman);
    EXPECT_EQ(usage->GetMissingNthFontFamilyUID(7), kInvalidUID);

    IFontFamily* family = doc->GetDataBase()->InstantiateFontFamily(roman);
    ASSERT_NE(family, nullptr);
    // Both formats carry the name; the document recorded Type 1, so Type 1 it is.
    EXPECT_EQ(family->GetFaceFontType(PMString("Regular")), IPMFont::kType1);
    EXPECT_EQ(family->GetFacePostScriptName(PMString("Regular")).GetUTF8String(),
              "NimbusRoman-Regular");

    IFontFamily* missing =
        doc->GetDataBase()->InstantiateFontFamily(usage->GetMissingNthFontFamilyUID(0));
    ASSERT_NE(missing, nullptr);
    EXPECT_EQ(missing->GetFacePostScriptName(PMString("Bold")).GetUTF8String(), "OldFace-Bold");
    EXPECT_EQ(missing->GetFaceFontType(PMString("Bold")), IPMFont::kOpenTypeCFF);
    EXPECT_EQ(missing->QueryFace(PMString("Bold")), nullptr);
    PMString hostName;
    missing->GetHostFamilyName(hostName);
    EXPECT_EQ(hostName.GetUTF8String(), "Old Face");
    EXPECT_EQ(doc->GetDataBase()->InstantiateFontFamily(kInvalidUID), nullptr);
}

TEST_F(FontUsage, FontListUpdateAnnouncesOnlyRealChanges) {
    faces.faces = {face("A-Regular", "A", "Regular", IPMFont::kOpenTypeCFF)};
    open("story\npara\nrun text=\"x\"\n");
    HostTest::RecordingObserver observer;
    fonts->GetSubject()->AttachObserver(&observer, IID_IFONTMGR);

    EXPECT_FALSE(fonts->UpdateFontList()); // folders unchanged: nothing re-read
    faces.changed = true;
    EXPECT_FALSE(fonts->UpdateFontList()); // re-read, same faces
    EXPECT_TRUE(observer.changes.empty());

    IPMFont* before = fonts->QueryFont(PMString("A-Regular"));
    faces.faces.push_back(face("B-Bold", "B", "Bold", IPMFont::kTrueType));
    faces.changed = true;
    EXPECT_TRUE(fonts->UpdateFontList());
    ASSERT_EQ(observer.changes.size(), 1u);
    EXPECT_EQ(observer.changes[0], std::make_pair(kFontSystemChangedMessage, IID_IFONTMGR));
    EXPECT_EQ(fonts->GetFontCount(false, IFontMgr::kAllFonts), 2);
    EXPECT_EQ(fonts->QueryFont(PMString("A-Regular")), before); // handed-out fonts stay valid
    fonts->GetSubject()->DetachObserver(&observer, IID_IFONTMGR);
}

TEST_F(FontUsage, QueryFontAcceptsTheHostsFormsOfAName) {
    faces.faces = {face("Sans-Bold", "Sans", "Bold", IPMFont::kTrueType),
                   face("Sans-Regular", "Sans", "Regular", IPMFont::kTrueType)};
    open("story\npara\nrun text=\"x\"\n");
    auto ps = [&](const char* name) {
        IPMFont* font = fonts->QueryFont(PMString(name));
        return font ? font->GetPostScriptName().GetUTF8String() : std::string("(none)");
    };
    EXPECT_EQ(ps("Sans-Bold"), "Sans-Bold");
    EXPECT_EQ(ps("Sans\tBold"), "Sans-Bold");
    EXPECT_EQ(ps("sans bold"), "Sans-Bold");
    EXPECT_EQ(ps("Sans"), "Sans-Regular");
    EXPECT_EQ(ps("Serif"), "(none)");
    EXPECT_EQ(fonts->GetNumFontFamilies(), 1);
    EXPECT_EQ(fonts->GetNthFontFamily(1), nullptr);
}

} // namespace
