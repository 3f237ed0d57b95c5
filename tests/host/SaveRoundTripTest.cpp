// Replacement, Save As and reopening, with the original kept safe.
#include "HostTestSupport.h"
#include "host/document/DocumentSaver.h"
#include "host/fonts/FontconfigFontSystem.h"
#include "host/idml/IdmlError.h"
#include "host/session/GalleySession.h"

#include <gtest/gtest.h>
#include <zip.h>

#include <filesystem>

namespace {

const char* kDocument = R"(
font "Lost Serif" Regular LostSerif-Regular Type1
pstyle Body font="Nimbus Roman" style=Regular
story
para pstyle=Body
run text="stays in Nimbus Roman"
story
para pstyle=Body
run font="Lost Serif" style=Regular text="replace me\n"
run cstyle= text="and leave me"
)";

class SaveRoundTrip : public ::testing::Test {
protected:
    HostTest::PrivateFontconfig world;
    HostTest::TempDir dir;
    Galley::FontconfigFontSystem fontconfig;
    std::unique_ptr<Galley::GalleySession> session;
    std::string original;

    void SetUp() override {
        world.link("/usr/share/fonts/type1/urw-base35/NimbusRoman-Regular.t1");
        world.link("/usr/share/fonts/truetype/dejavu/DejaVuSerif.ttf");
        session = std::make_unique<Galley::GalleySession>(fontconfig);
        original = HostTest::writeDescribed(dir, kDocument, "original.idml");
    }
    std::unique_ptr<Galley::IdmlDocument> open(const std::string& path) {
        return Galley::IdmlDocument::open(path, session->fonts());
    }
};

TEST_F(SaveRoundTrip, ReplacedFontSurvivesSaveAndReopen) {
    auto doc = open(original);
    ASSERT_EQ(doc->usage().missing().size(), 1u);
    ASSERT_EQ(HostTest::replaceFontThroughSdk(doc.get(), "LostSerif-Regular", "DejaVuSerif"), 1);
    const std::string saved = dir.file("saved.idml");
    Galley::saveDocumentAs(*doc, saved);
    EXPECT_FALSE(doc->IsModified());

    auto reopened = open(saved);
    EXPECT_TRUE(reopened->usage().missing().empty());
    EXPECT_EQ(HostTest::usageNames(reopened->usage().used()),
              (std::vector<std::string>{"Nimbus Roman/Regular", "DejaVu Serif/Book"}));
    std::string fontsXml;
    for (auto& [name, data] : HostTest::readParts(saved))
        if (name == "Resources/Fonts.xml")
            fontsXml = data;
    EXPECT_NE(fontsXml.find("PostScriptName=\"DejaVuSerif\""), std::string::npos) << fontsXml;
    EXPECT_NE(fontsXml.find("FontType=\"TrueType\""), std::string::npos);
    EXPECT_EQ(fontsXml.find("LostSerif"), std::string::npos);
}

TEST_F(SaveRoundTrip, UnchangedPartsAreByteIdenticalAndMimetypeComesFirstStored) {
    auto doc = open(original);
    HostTest::replaceFontThroughSdk(doc.get(), "LostSerif-Regular", "DejaVuSerif");
    const std::string saved = dir.file("saved.idml");
    Galley::saveDocumentAs(*doc, saved);

    auto before = HostTest::readParts(original);
    auto after = HostTest::readParts(saved);
    ASSERT_EQ(before.size(), after.size());
    for (std::size_t i = 0; i < before.size(); ++i) {
        EXPECT_EQ(after[i].first, before[i].first);
        bool changed =
            before[i].first == "Stories/Story_u2.xml" || before[i].first == "Resources/Fonts.xml";
        EXPECT_EQ(after[i].second == before[i].second, !changed) << before[i].first;
    }
    zip_t* archive = zip_open(saved.c_str(), ZIP_RDONLY, nullptr);
    ASSERT_NE(archive, nullptr);
    zip_stat_t stat;
    zip_stat_index(archive, 0, 0, &stat);
    EXPECT_STREQ(stat.name, "mimetype");
    EXPECT_EQ(stat.comp_method, ZIP_CM_STORE);
    zip_discard(archive);
}

TEST_F(SaveRoundTrip, UnmodifiedDocumentSavesEveryPartUnchanged) {
    auto doc = open(original);
    const std::string saved = dir.file("copy.idml");
    Galley::saveDocumentAs(*doc, saved);
    EXPECT_EQ(HostTest::readParts(saved), HostTest::readParts(original));
}

TEST_F(SaveRoundTrip, FailingSaveLeavesTheOriginalAndNoLitter) {
    const std::string bytes = HostTest::readFile(original);
    auto doc = open(original);
    HostTest::replaceFontThroughSdk(doc.get(), "LostSerif-Regular", "DejaVuSerif");

    std::filesystem::create_directory(dir.file("occupied"));
    EXPECT_THROW(Galley::saveDocumentAs(*doc, dir.file("occupied")), Galley::IdmlError);
    EXPECT_THROW(Galley::saveDocumentAs(*doc, dir.file("no/such/folder/x.idml")),
                 Galley::IdmlError);
    EXPECT_THROW(Galley::saveDocumentAs(*doc, original), Galley::IdmlError); // not asked for

    EXPECT_EQ(HostTest::readFile(original), bytes);
    EXPECT_TRUE(doc->IsModified());
    std::vector<std::string> names;
    for (auto& entry : std::filesystem::directory_iterator(dir.path()))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (std::vector<std::string>{"occupied", "original.idml"}));
}

TEST_F(SaveRoundTrip, OverwritingTheOriginalWhenAskedReplacesItWhole) {
    auto doc = open(original);
    HostTest::replaceFontThroughSdk(doc.get(), "LostSerif-Regular", "DejaVuSerif");
    Galley::saveDocumentAs(*doc, original, {.overwriteOriginal = true});
    EXPECT_TRUE(open(original)->usage().missing().empty());
}

} // namespace
