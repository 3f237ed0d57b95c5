// Galley's font system on a private fontconfig configuration with Debian-packaged fonts.
#include "HostTestSupport.h"
#include "sdk/HostIdentifiers.h"

#include <algorithm>
#include <chrono>
#include <functional>
#include <thread>

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

// Every way a font folder changes after the load, one after the other in one session: what
// fontconfig then lists must be what a fresh configuration would list, and files that were
// only added are taken in one by one, without reading the whole configuration again. With
// the parameter, the watch's thread reads ahead before each load: added files are then read
// there, once, and anything else is left to the load.
class FontFolderChanges : public Fontconfig, public ::testing::WithParamInterface<bool> {};

TEST_P(FontFolderChanges, EveryChangeIsTakenIn) {
    const bool readAhead = GetParam();
    namespace fs = std::filesystem;
    const std::string folder = faces.fontFolder();
    const auto linkAs = [&](const std::string& target, const std::string& name) {
        fs::create_symlink(target, folder + "/" + name);
    };
    const auto replaceLink = [&](const std::string& target, const std::string& name) {
        linkAs(target, name + ".new");
        fs::rename(folder + "/" + name + ".new", folder + "/" + name);
    };
    struct Step {
        const char* what;
        std::function<void()> change;
        bool readAgain; // the whole configuration, rather than the added files
        Strings listed; // PostScript names, sorted
    };
    const std::vector<Step> steps = {
        {"a face linked",
         [&] { linkAs(kDejaVu + "DejaVuSans.ttf", "a.ttf"); },
         false,
         {"DejaVuSans"}},
        {"two more, one not a font",
         [&] {
             linkAs(kOpenType + "C059-Bold.otf", "b.otf");
             linkAs(kType1 + "NimbusSans-Regular.t1", "c.t1");
             std::ofstream(folder + "/notes.txt") << "not a font\n";
         },
         false,
         {"C059-Bold", "DejaVuSans", "NimbusSans-Regular"}},
        {"a hidden file",
         [&] { linkAs(kDejaVu + "DejaVuSerif.ttf", ".hidden.ttf"); },
         false,
         {"C059-Bold", "DejaVuSans", "NimbusSans-Regular"}},
        {"a link put in the place of one taken in file by file",
         [&] { replaceLink(kDejaVu + "DejaVuSerif.ttf", "b.otf"); },
         true,
         {"DejaVuSans", "DejaVuSerif", "NimbusSans-Regular"}},
        {"a face removed",
         [&] { fs::remove(folder + "/a.ttf"); },
         true,
         {"DejaVuSerif", "NimbusSans-Regular"}},
        {"a link put in the place of one of a fresh load",
         [&] { replaceLink(kOpenType + "C059-Bold.otf", "c.t1"); },
         true,
         {"C059-Bold", "DejaVuSerif"}},
        {"a folder with a face in it",
         [&] {
             fs::create_directory(folder + "/more");
             linkAs(kDejaVu + "DejaVuSans.ttf", "more/d.ttf");
         },
         true,
         {"C059-Bold", "DejaVuSans", "DejaVuSerif"}},
        {"a face added beside, after the folder",
         [&] { linkAs(kDejaVu + "DejaVuSansMono.ttf", "e.ttf"); },
         false,
         {"C059-Bold", "DejaVuSans", "DejaVuSansMono", "DejaVuSerif"}},
    };
    for (const auto& step : steps) {
        // Past the clock tick of the last reading: what changed within it is looked at once
        // more (here, and read again where a file of it may have been put in another's place).
        std::this_thread::sleep_for(std::chrono::milliseconds(12));
        fonts().UpdateFontList();
        const int freshLoads = faces.freshLoads();
        const int filesTakenIn = faces.filesTakenIn();
        step.change();
        if (readAhead) {
            faces.readAhead();
            const int readEarly = faces.filesTakenIn() - filesTakenIn;
            EXPECT_EQ(readEarly > 0, !step.readAgain && step.what != std::string("a hidden file"))
                << step.what;
            fonts().UpdateFontList();
            EXPECT_EQ(faces.filesTakenIn() - filesTakenIn, readEarly)
                << step.what << ": read again in the load";
        } else {
            fonts().UpdateFontList();
        }
        Strings listed;
        for (const auto* font : fonts().installedFonts())
            listed.push_back(font->face().postscriptName);
        std::sort(listed.begin(), listed.end());
        EXPECT_EQ(listed, step.listed) << step.what;
        EXPECT_EQ(faces.freshLoads() > freshLoads, step.readAgain) << step.what;
    }
}

INSTANTIATE_TEST_SUITE_P(Fontconfig, FontFolderChanges, ::testing::Bool(),
                         [](const auto& info) { return info.param ? "ReadAhead" : "AtLoad"; });

} // namespace
