// Galley's font system on a private fontconfig configuration with Debian-packaged fonts.
#include "HostTestSupport.h"
#include "host/fonts/FontconfigFontSystem.h"
#include "host/session/SessionFontMgr.h"
#include "sdk/HostIdentifiers.h"

#include <gtest/gtest.h>

using Strings = std::vector<std::string>;

namespace {

const std::string kType1 = "/usr/share/fonts/type1/urw-base35/";
const std::string kOpenType = "/usr/share/fonts/opentype/urw-base35/";
const std::string kDejaVu = "/usr/share/fonts/truetype/dejavu/";

class Fontconfig : public ::testing::Test {
protected:
    HostTest::PrivateFontconfig world;
    HostTest::TempDir dir;
    Galley::FontconfigFontSystem fontconfig;
};

TEST_F(Fontconfig, ListsOnlyThePrivateFacesWithTheirTypes) {
    world.link(kType1 + "NimbusRoman-Regular.t1");
    world.link(kOpenType + "NimbusSans-Bold.otf");
    world.link(kDejaVu + "DejaVuSans.ttf");
    Galley::SessionFontMgr fonts(fontconfig);
    ASSERT_EQ(fonts.GetFontCount(false, IFontMgr::kAllFonts), 3);
    auto type = [&](const char* ps) {
        IPMFont* font = fonts.QueryFont(PMString(ps));
        return font ? font->GetFontType() : IPMFont::kUnknownFontType;
    };
    EXPECT_EQ(type("NimbusRoman-Regular"), IPMFont::kType1);
    EXPECT_EQ(type("NimbusSans-Bold"), IPMFont::kOpenTypeCFF);
    EXPECT_EQ(type("DejaVuSans"), IPMFont::kTrueType);
    EXPECT_EQ(fonts.QueryFont(PMString("DejaVuSans-Bold")), nullptr); // a substitute is no match
}

TEST_F(Fontconfig, MissingAgainstInstalledWithNamesAndTypesFromTheRightSide) {
    world.link(kType1 + "NimbusRoman-Regular.t1");
    world.link(kOpenType + "NimbusRoman-Regular.otf");
    world.link(kDejaVu + "DejaVuSerif.ttf");
    Galley::SessionFontMgr fonts(fontconfig);
    auto doc = HostTest::openDescribed(dir, fonts, R"(
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
    world.link(kDejaVu + "DejaVuSans.ttf");
    Galley::SessionFontMgr fonts(fontconfig);
    HostTest::RecordingObserver observer;
    fonts.GetSubject()->AttachObserver(&observer, IID_IFONTMGR);
    EXPECT_FALSE(fonts.UpdateFontList());

    world.link(kOpenType + "C059-Bold.otf"); // right after the load, as an activation would
    EXPECT_TRUE(fonts.UpdateFontList());
    EXPECT_EQ(fonts.GetFontCount(true, IFontMgr::kAllFonts), 2);
    ASSERT_NE(fonts.QueryFont(PMString("C059-Bold")), nullptr);
    ASSERT_EQ(observer.changes.size(), 1u);
    EXPECT_EQ(observer.changes[0].first, kFontSystemChangedMessage);
    fonts.GetSubject()->DetachObserver(&observer, IID_IFONTMGR);
}

} // namespace
