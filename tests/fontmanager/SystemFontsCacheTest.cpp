// The system's fonts kept from one server to the next: a kept list serves a new server at
// once while nothing it was loaded from changed, and fontconfig has the last word.
#include "FontFixtures.h"

#include "fontmanager/SystemFonts.h"

#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <thread>

namespace Vellumine {
namespace {

using namespace VellumineTest;
using std::chrono::hours;
using std::chrono::milliseconds;

class SystemFontsCacheTest : public testing::Test {
protected:
    SystemFontsCacheTest() {
        std::filesystem::create_directories(installed);
        // Past the clock tick in which the configuration was written: a list loaded within
        // it is loaded again next time, since a change in that tick would not show.
        std::this_thread::sleep_for(milliseconds(12));
    }

    // What a server started now answers first.
    bool firstListHas(const std::string& postScriptName, milliseconds checkDelay = hours(1)) {
        SystemFontsCache cache(kept, checkDelay);
        cache.preload(own);
        return !cache.current(own).byPostScriptName(postScriptName).empty();
    }

    // The kept list with a name changed wherever it appears (to one as long, so that the
    // file stays whole): only a server that read the file can know the changed name.
    void tamper(const std::string& name, const std::string& replacement) {
        std::string text = readFile(kept);
        ASSERT_NE(text.find(name), std::string::npos);
        for (auto at = text.find(name); at != std::string::npos; at = text.find(name, at))
            text.replace(at, name.size(), replacement);
        std::ofstream(kept, std::ios::binary | std::ios::trunc) << text;
    }

    ScratchFolder scratch;
    const std::filesystem::path installed = scratch.path() / "installed";
    const std::filesystem::path own = scratch.path() / "fonts" / "vellumine";
    const std::filesystem::path kept = scratch.path() / "cache" / "system-fonts";
    const PrivateFontconfig system{{dejaVuFolder, installed}};
};

TEST_F(SystemFontsCacheTest, AKeptListServesTheNextServerAtOnceAndFontconfigHasTheLastWord) {
    ASSERT_TRUE(firstListHas("DejaVuSans")); // loaded from fontconfig, and kept
    ASSERT_TRUE(std::filesystem::exists(kept));
    tamper("DejaVuSans-Bold", "DejaVuSans-Blod");
    EXPECT_TRUE(firstListHas("DejaVuSans-Blod")) << "the kept list was not used";

    // Once the check is due, fontconfig's own list replaces the kept one, and is kept.
    SystemFontsCache checking(kept, milliseconds(0));
    checking.preload(own);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    while (checking.current(own).byPostScriptName("DejaVuSans-Bold").empty() &&
           std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(milliseconds(5));
    EXPECT_FALSE(checking.current(own).byPostScriptName("DejaVuSans-Bold").empty());
    EXPECT_TRUE(checking.current(own).byPostScriptName("DejaVuSans-Blod").empty());
    EXPECT_EQ(readFile(kept).find("DejaVuSans-Blod"), std::string::npos);
}

TEST_F(SystemFontsCacheTest, AKeptListIsPassedOverWhenWhatItWasLoadedFromChanged) {
    ASSERT_TRUE(firstListHas("DejaVuSans"));
    ASSERT_FALSE(firstListHas("C059-Roman"));
    std::this_thread::sleep_for(milliseconds(12)); // past the clock tick of the last load
    std::filesystem::create_symlink(urwOpenTypeFolder / "C059-Roman.otf", installed / "C059.otf");
    EXPECT_TRUE(firstListHas("C059-Roman")) << "a font installed since";
    tamper("DejaVuSans-Bold", "DejaVuSans-Blod");
    const std::string other = "FONTCONFIG_PATH=" + scratch.path().string();
    setenv("FONTCONFIG_PATH", scratch.path().c_str(), 1);
    EXPECT_TRUE(firstListHas("DejaVuSans-Bold")) << other;
    unsetenv("FONTCONFIG_PATH");
}

TEST_F(SystemFontsCacheTest, ADamagedKeptListIsIgnoredAndReplaced) {
    ASSERT_TRUE(firstListHas("DejaVuSans"));
    const std::string whole = readFile(kept);
    for (const std::string& damaged : {std::string(), std::string("vellumine system fonts 0\n"),
                                       whole.substr(0, whole.size() / 2), whole + "3:odd",
                                       std::string("vellumine system fonts 1\n99999999999:x")}) {
        std::ofstream(kept, std::ios::binary | std::ios::trunc) << damaged;
        EXPECT_TRUE(firstListHas("DejaVuSans")) << damaged.substr(0, 40);
        EXPECT_EQ(readFile(kept).substr(0, 25), "vellumine system fonts 1\n");
    }
}

} // namespace
} // namespace Vellumine
