// Broken packages give a message naming the file and the part, and never a crash or hang.
#include "HostTestSupport.h"
#include "host/idml/IdmlError.h"
#include "host/session/SessionFontMgr.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace {

class BadInput : public ::testing::Test {
protected:
    HostTest::TempDir dir;
    HostTest::FixedFaces faces;
    Galley::SessionFontMgr fonts{faces};
    IdmlTestKit::DocumentDef doc = IdmlTestKit::parseDescription(
        "pstyle Body font=A\ncstyle Emph style=Italic\nstory\npara pstyle=Body\nrun text=\"t\"\n");

    // Opens `doc` and returns the error's part and message; fails the test if it opens.
    Galley::IdmlError openFailure(const Galley::PackageLimits& limits = {}) {
        std::string path = dir.file("bad.idml");
        IdmlTestKit::writeIdml(doc, path);
        try {
            Galley::IdmlDocument::open(path, fonts, limits);
        } catch (const Galley::IdmlError& error) {
            EXPECT_EQ(error.file(), path);
            EXPECT_NE(std::string(error.what()).find(path), std::string::npos);
            return error;
        }
        ADD_FAILURE() << "the document opened";
        return Galley::IdmlError("", "", "");
    }
};

TEST_F(BadInput, ContainerThatIsNoZip) {
    for (const char* content : {"not a zip at all", ""}) {
        std::string path = dir.file("garbage.idml");
        std::ofstream(path) << content;
        try {
            Galley::IdmlDocument::open(path, fonts);
            ADD_FAILURE() << "opened";
        } catch (const Galley::IdmlError& error) {
            EXPECT_EQ(error.file(), path);
            EXPECT_NE(error.detail().find("not a readable IDML package"), std::string::npos);
        }
    }
}

TEST_F(BadInput, TruncatedContainer) {
    std::string path = dir.file("whole.idml");
    IdmlTestKit::writeIdml(doc, path);
    std::string bytes = HostTest::readFile(path);
    std::string cut = dir.file("cut.idml");
    std::ofstream(cut, std::ios::binary) << bytes.substr(0, bytes.size() / 2);
    EXPECT_THROW(Galley::IdmlDocument::open(cut, fonts), Galley::IdmlError);
}

TEST_F(BadInput, MissingDesignMap) {
    doc.omittedParts.insert("designmap.xml");
    EXPECT_EQ(openFailure().part(), "designmap.xml");
}

TEST_F(BadInput, MalformedXmlInEachPart) {
    for (const char* part :
         {"designmap.xml", "Resources/Fonts.xml", "Resources/Styles.xml", "Stories/Story_u1.xml"}) {
        doc.replacedParts = {{part, "<?xml version=\"1.0\"?>\n<Root><Unclosed></Root>"}};
        auto error = openFailure();
        EXPECT_EQ(error.part(), part);
        EXPECT_NE(error.detail().find("malformed XML at line 2"), std::string::npos)
            << error.what();
    }
}

TEST_F(BadInput, BasedOnCycle) {
    doc.paragraphStyles = {{"A", "C", {}}, {"B", "A", {}}, {"C", "B", {}}};
    auto error = openFailure();
    EXPECT_EQ(error.part(), "Resources/Styles.xml");
    EXPECT_NE(error.detail().find("BasedOn cycle"), std::string::npos);
}

TEST_F(BadInput, StyleBasedOnItself) {
    doc.characterStyles = {{"Self", "Self", {}}};
    EXPECT_EQ(openFailure().part(), "Resources/Styles.xml");
}

TEST_F(BadInput, StoryNamesAStyleTheDocumentLacks) {
    doc.stories[0].paragraphs[0].runs[0].characterStyle = "Nowhere";
    auto error = openFailure();
    EXPECT_EQ(error.part(), "Stories/Story_u1.xml");
    EXPECT_NE(error.detail().find("CharacterStyle/Nowhere"), std::string::npos);
}

TEST_F(BadInput, DesignMapListsAStoryThePackageLacks) {
    doc.omittedParts.insert("Stories/Story_u1.xml");
    EXPECT_EQ(openFailure().part(), "Stories/Story_u1.xml");
}

TEST_F(BadInput, HugePart) {
    doc.replacedParts = {{"Stories/Story_u1.xml", std::string(4096, ' ')}};
    Galley::PackageLimits limits;
    limits.maxPartBytes = 1024;
    auto error = openFailure(limits);
    EXPECT_EQ(error.part(), "Stories/Story_u1.xml");
    EXPECT_NE(error.detail().find("too large"), std::string::npos);
}

TEST_F(BadInput, DeeplyNestedPart) {
    std::string deep = "<?xml version=\"1.0\"?>\n";
    for (int i = 0; i < 100000; ++i)
        deep += "<a>";
    doc.replacedParts = {{"Stories/Story_u1.xml", deep}};
    EXPECT_EQ(openFailure().part(), "Stories/Story_u1.xml");
}

TEST_F(BadInput, FailedOpenWritesNothing) {
    doc.replacedParts = {{"Resources/Styles.xml", "<broken"}};
    openFailure();
    std::size_t files = 0;
    for ([[maybe_unused]] auto& entry : std::filesystem::directory_iterator(dir.path()))
        ++files;
    EXPECT_EQ(files, 1u);
}

} // namespace
