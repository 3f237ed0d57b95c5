// Galley's font system on a private fontconfig configuration with Debian-packaged fonts.
#include "HostTestSupport.h"
#include "sdk/HostIdentifiers.h"

using Strings = std::vector<std::string>;

namespace {

const std::string kType1 = "/usr/share/fonts/type1/urw-base35/";
const std::string kOpenType = "/usr/share/fonts/opentype/urw-base35/";
const std::string kDejaVu = "/usr/share/fonts/truetype/dejavu/";

using Fontconfig = HostTest::SessionTest<HostTest::FontconfigWorld>;

TEST_F(Fontconfig, ListsOnlyThePrivateFacesWithTheirTypes) {
    faces.link(kType1 + "NimbusRoman-Regular.t1");
    faces.link(kOpenType + "NimbusSans-Bold.otf");
    faces.link(kDejaVu + "DejaVuSans.ttf");
    ASSERT_EQ(fonts().GetFontCount(false, IFontMgr::kAllFonts), 3);
    for (auto [name, type] : {std::pair{"NimbusRoman-Regular", IPMFont::kType1},
                              {"NimbusSans-Bold", IPMFont::kOpenTypeCFF},
                              {"DejaVuSans", IPMFont::kTrueType}}) {
        IPMFont* font = fonts().QueryFont(PMString(name));
        EXPECT_EQ(font ? font->GetFontType() : IPMFont::kUnknownFontType, type) << name;
    }
    EXPECT_EQ(fonts().QueryFont(PMString("DejaVuSans-Bold")), nullptr); // a substitute is no match
}

TEST_F(Fontconfig, MissingAgainstInstalledWithNamesAndTypesFromTheRightSide) {
    faces.link(kType1 + "NimbusRoman-Regular.t1");
    faces.link(kOpenType + "NimbusRoman-Regular.otf");
    faces.link(kDejaVu + "DejaVuSerif.ttf");
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
    const auto& resolver = doc->resolver();
    // Both formats are installed; the document asked for OpenType CFF.
    EXPECT_EQ(resolver.type({"Nimbus Roman", "Regular"}), IPMFont::kOpenTypeCFF);
    EXPECT_EQ(resolver.postscriptName({"DejaVu Serif", "Book"}), "DejaVuSerif");
    EXPECT_EQ(resolver.type({"DejaVu Serif", "Book"}), IPMFont::kTrueType);
    EXPECT_EQ(resolver.postscriptName({"Brand Grotesk", "Medium"}), "BrandGrotesk-Medium");
    EXPECT_EQ(resolver.type({"Brand Grotesk", "Medium"}), IPMFont::kOpenTypeTT);
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
