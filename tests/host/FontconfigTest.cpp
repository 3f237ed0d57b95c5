// Galley's font system on a private fontconfig configuration with Debian-packaged fonts.
#include "HostTestSupport.h"
#include "sdk/HostIdentifiers.h"

using Strings = std::vector<std::string>;

namespace {

const std::string kType1 = "/usr/share/fonts/type1/urw-base35/";
const std::string kOpenType = "/usr/share/fonts/opentype/urw-base35/";
const std::string kDejaVu = "/usr/share/fonts/truetype/dejavu/";

using Fontconfig = HostTest::SessionTest<HostTest::FontconfigWorld>;

// Only the private faces are listed; names and types come from the installed face when
// there is one, else from the document.
TEST_F(Fontconfig, MissingAgainstInstalledWithNamesAndTypesFromTheRightSide) {
    faces.link(kType1 + "NimbusRoman-Regular.t1");
    faces.link(kOpenType + "NimbusRoman-Regular.otf");
    faces.link(kDejaVu + "DejaVuSerif.ttf");
    faces.link(kType1 + "NimbusSans-Regular.t1");
    ASSERT_EQ(fonts().GetFontCount(false, IFontMgr::kAllFonts), 4);
    IPMFont* type1 = fonts().QueryFont(PMString("NimbusSans-Regular"));
    EXPECT_EQ(type1 ? type1->GetFontType() : IPMFont::kUnknownFontType, IPMFont::kType1);
    EXPECT_EQ(fonts().QueryFont(PMString("DejaVuSerif-Bold")), nullptr); // a substitute is no match
    auto doc = open(R"(
font "Nimbus Roman" Regular NimbusRoman-Regular OpenTypeCFF
font "Brand Grotesk" Medium BrandGrotesk-Medium OpenTypeTT
pstyle Body font="Nimbus Roman" style=Regular
story
para pstyle=Body
run text="a"
run font="Brand Grotesk" style=Medium text="b"
run font="DejaVu Serif" style=Book text="c"
)");
    EXPECT_EQ(HostTest::usageNames(doc->usage().used()),
              (Strings{"Nimbus Roman/Regular", "DejaVu Serif/Book"}));
    EXPECT_EQ(HostTest::usageNames(doc->usage().missing()), (Strings{"Brand Grotesk/Medium"}));
    // Both formats of Nimbus Roman are installed; the document asked for OpenType CFF.
    for (auto [key, postscript, type] :
         {std::tuple<Galley::FontKey, std::string, IPMFont::FontType>{
              {"Nimbus Roman", "Regular"}, "NimbusRoman-Regular", IPMFont::kOpenTypeCFF},
          {{"DejaVu Serif", "Book"}, "DejaVuSerif", IPMFont::kTrueType},
          {{"Brand Grotesk", "Medium"}, "BrandGrotesk-Medium", IPMFont::kOpenTypeTT}}) {
        EXPECT_EQ(doc->resolver().postscriptName(key), postscript);
        EXPECT_EQ(doc->resolver().type(key), type) << postscript;
    }
}

TEST_F(Fontconfig, FontLinkedWithinTheSameSecondIsSeenAndAnnounced) {
    faces.link(kDejaVu + "DejaVuSans.ttf");
    HostTest::RecordingObserver observer;
    fonts().GetSubject()->AttachObserver(&observer, IID_IFONTMGR);
    EXPECT_FALSE(fonts().UpdateFontList());

    faces.link(kOpenType + "C059-Bold.otf"); // right after the load, as an activation would
    EXPECT_TRUE(fonts().UpdateFontList());
    EXPECT_EQ(fonts().GetFontCount(true, IFontMgr::kAllFonts), 2);
    EXPECT_NE(fonts().QueryFont(PMString("C059-Bold")), nullptr);
    EXPECT_EQ(observer.changes,
              (decltype(observer.changes){{kFontSystemChangedMessage, IID_IFONTMGR}}));
    fonts().GetSubject()->DetachObserver(&observer, IID_IFONTMGR);
}

} // namespace
