// The main road with temporary activation, as a user meets it: Galley opens a document whose
// font vellumine activates on its own, and once Galley has quit, fontconfig no longer lists
// that font a few seconds later.
#include "PrivateSession.h"

#include "tests/support/GalleyProcess.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace {

const std::string texGyre = "/usr/share/texmf/fonts/opentype/public/tex-gyre";

class GalleyRoad : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(session.ok()) << session.error();
        const std::string root = session.root();
        std::filesystem::create_directories(session.dataHome() + "/fonts");
        std::ofstream(root + "/fonts.conf")
            << "<?xml version=\"1.0\"?>\n<fontconfig><dir>/usr/share/fonts/truetype/dejavu</dir>"
               "<dir>/usr/share/fonts/type1/urw-base35</dir><dir>"
            << session.dataHome() << "/fonts</dir><cachedir>" << root
            << "/fc-cache</cachedir></fontconfig>\n";
        setenv("FONTCONFIG_FILE", (root + "/fonts.conf").c_str(), 1);
        setenv("VELLUMINE_AUTO_DEACTIVATE_DELAY", "3", 1);
        ASSERT_EQ(run({VELLUMINE_EXECUTABLE, "add", texGyre}), 0);
        ASSERT_EQ(run({VELLUMINE_EXECUTABLE, "install-launcher"}), 0);
    }
    void TearDown() override {
        unsetenv("FONTCONFIG_FILE");
        unsetenv("VELLUMINE_AUTO_DEACTIVATE_DELAY");
    }

    int run(const std::vector<std::string>& argv) {
        VLMTest::ProgramRun program(argv, session.root() + "/run" + std::to_string(runs++));
        return program.wait();
    }
    // What `fc-list` prints for one PostScript name in this world.
    std::string fcList(const std::string& postScriptName) {
        VLMTest::ProgramRun list({"/usr/bin/fc-list", ":postscriptname=" + postScriptName, "file"},
                                 session.root() + "/fc-list" + std::to_string(runs++));
        list.wait();
        return list.output();
    }

    VlmTest::PrivateSession session;
    int runs = 0;
};

TEST_F(GalleyRoad, FontsActivatedForADocumentGoAFewSecondsAfterGalleyQuits) {
    VLMTest::ProgramRun galley({GALLEY_EXECUTABLE, "--batch", SAMPLE_DOCUMENT, "--timeout", "20"},
                               session.root() + "/galley");
    ASSERT_EQ(galley.wait(), 0) << galley.output() << galley.errors();
    EXPECT_NE(galley.output().find("== Activating Fonts (closed) =="), std::string::npos);
    // Still there within the grace period: a restarted Galley would keep it.
    EXPECT_NE(fcList("TeXGyreHeros-Bold").find("texgyreheros-bold.otf"), std::string::npos);
    EXPECT_TRUE(VlmTest::waitFor([&] { return fcList("TeXGyreHeros-Bold").empty(); }));
}

} // namespace
