#include "FontFixtures.h"

#include "fontmanager/Activation.h"
#include "fontmanager/Catalog.h"
#include "fontmanager/FaceReader.h"
#include "fontmanager/LibraryImporter.h"

#include <gtest/gtest.h>

namespace Vellumine {
namespace {

using namespace VellumineTest;

TEST(FaceReader, ClassifiesFacesAsTheHostDoes) {
    ScratchFolder scratch;
    const auto trueTypeNamedOtf = scratch.write("DejaVuSans.otf", readFile(dejaVuSans));
    const FaceReader reader;
    struct Case {
        std::filesystem::path file;
        FaceType type;
        std::string postScriptName;
    };
    for (const Case& c :
         {Case{nimbusRomanType1, FaceType::type1, "NimbusRoman-Regular"},
          Case{nimbusRomanOpenType, FaceType::openTypePostScript, "NimbusRoman-Regular"},
          Case{dejaVuSans, FaceType::trueType, "DejaVuSans"},
          Case{trueTypeNamedOtf, FaceType::openTypeTrueType, "DejaVuSans"}}) {
        const FontFileReading reading = reader.read(c.file);
        ASSERT_EQ(reading.faces.size(), 1u) << c.file;
        EXPECT_EQ(reading.faces[0].type, c.type) << c.file;
        EXPECT_EQ(reading.faces[0].postScriptName, c.postScriptName);
    }
}

TEST(FaceReader, ReadsEveryFaceOfACollection) {
    ScratchFolder scratch;
    const auto collection = scratch.write("Pair.ttc", makeCollection({dejaVuSans, dejaVuSerif}));
    const FontFileReading reading = FaceReader().read(collection);
    ASSERT_EQ(reading.faces.size(), 2u) << (reading.problems.empty() ? "" : reading.problems[0]);
    EXPECT_EQ(reading.faces[0].postScriptName, "DejaVuSans");
    EXPECT_EQ(reading.faces[1].postScriptName, "DejaVuSerif");
    EXPECT_EQ(reading.faces[1].faceIndex, 1);
    EXPECT_EQ(reading.faces[1].type, FaceType::trueType);
}

TEST(FaceReader, ReportsDamagedFilesInsteadOfFailing) {
    ScratchFolder scratch;
    const FaceReader reader;
    const std::string otf = readFile(nimbusRomanOpenType);
    for (const auto& file :
         {scratch.write("empty.ttf", ""), scratch.write("text.otf", "this is not a font"),
          scratch.write("cut.otf", otf.substr(0, 900)),
          scratch.write("header-only.ttc", "ttcf\x00\x01\x00\x00\xff\xff\xff\xff"),
          scratch.path() / "missing.ttf"}) {
        const FontFileReading reading = reader.read(file);
        EXPECT_TRUE(reading.faces.empty()) << file;
        EXPECT_FALSE(reading.problems.empty()) << file;
    }
}

class LibraryTest : public testing::Test {
protected:
    std::filesystem::path activationFolder() const {
        return scratch.path() / "fonts" / "vellumine";
    }

    ScratchFolder scratch;
    Catalog catalog{scratch.path() / "vellumine" / "library.db"};
    FaceReader reader;
    LibraryImporter importer{catalog, reader};
    Activation activation{catalog, activationFolder()};
};

TEST_F(LibraryTest, AddsFoldersRecursivelySkipsDamagedFilesAndReportsMissingPaths) {
    const auto folder = scratch.path() / "incoming";
    std::filesystem::create_directories(folder / "deeper");
    std::filesystem::copy_file(dejaVuSans, folder / "deeper" / "DejaVuSans.ttf");
    std::filesystem::copy_file(nimbusRomanType1, folder / "NimbusRoman-Regular.t1");
    std::filesystem::copy_file(urwType1Folder / "NimbusRoman-Regular.afm",
                               folder / "NimbusRoman-Regular.afm");
    scratch.write("incoming/broken.ttf", "garbage");
    scratch.write("incoming/readme.txt", "not looked at");

    const ImportReport report = importer.add({folder, scratch.path() / "nowhere"});
    EXPECT_EQ(report.facesAdded, 2);
    EXPECT_EQ(report.filesSkipped, 1);
    EXPECT_TRUE(report.missingPaths);
    const auto type1 = catalog.facesByPostScriptName("NimbusRoman-Regular");
    ASSERT_EQ(type1.size(), 1u);
    EXPECT_EQ(type1[0].metricsFile.filename(), "NimbusRoman-Regular.afm");
}

TEST_F(LibraryTest, ReAddingKeepsIdentifiersAcrossReopening) {
    importer.add({dejaVuSans, nimbusRomanOpenType});
    const auto first = catalog.allFaces();
    ASSERT_EQ(first.size(), 2u);

    const ImportReport again = importer.add({dejaVuSans, dejaVuSans, urwOpenTypeFolder});
    EXPECT_EQ(again.facesKnown, 3); // DejaVuSans twice, NimbusRoman-Regular once in the folder
    EXPECT_FALSE(again.missingPaths);
    Catalog reopened(scratch.path() / "vellumine" / "library.db");
    EXPECT_EQ(reopened.facesByPostScriptName("DejaVuSans").at(0).id, first[0].id);
    EXPECT_EQ(reopened.facesByPostScriptName("NimbusRoman-Regular").size(), 1u);
    EXPECT_GT(first[0].id, 0);
}

TEST_F(LibraryTest, ActivationLinksOutlinesAndMetricsAndRemovesOnlyItsOwnLinks) {
    importer.add({nimbusRomanType1});
    const FaceRecord face = catalog.allFaces().at(0);
    ASSERT_EQ(activation.activate(face.id).outcome, ActivationResult::Outcome::changed);
    const auto link = activationFolder() / (std::to_string(face.id) + "-NimbusRoman-Regular.t1");
    const auto metrics =
        activationFolder() / (std::to_string(face.id) + "-NimbusRoman-Regular.afm");
    EXPECT_EQ(std::filesystem::read_symlink(link), nimbusRomanType1);
    EXPECT_TRUE(std::filesystem::is_symlink(metrics));
    EXPECT_TRUE(catalog.face(face.id)->active);
    EXPECT_EQ(activation.activate(face.id).outcome, ActivationResult::Outcome::unchanged);

    // A file the user put there under our name is left alone on deactivation.
    std::filesystem::remove(link);
    scratch.write("fonts/vellumine/" + link.filename().string(), "user's file");
    EXPECT_EQ(activation.deactivate(face.id).outcome, ActivationResult::Outcome::changed);
    EXPECT_EQ(readFile(link), "user's file");
    EXPECT_FALSE(std::filesystem::exists(std::filesystem::symlink_status(metrics)));
    EXPECT_FALSE(catalog.face(face.id)->active);
    EXPECT_EQ(activation.deactivate(face.id).outcome, ActivationResult::Outcome::unchanged);

    // ...and activation does not overwrite it either.
    EXPECT_EQ(activation.activate(face.id).outcome, ActivationResult::Outcome::failed);
    EXPECT_EQ(readFile(link), "user's file");
}

TEST_F(LibraryTest, ActivationRemakesALinkThatWasRemoved) {
    importer.add({dejaVuSans});
    const std::int64_t id = catalog.allFaces().at(0).id;
    activation.activate(id);
    std::filesystem::remove(catalog.link(id)->link);
    EXPECT_EQ(activation.activate(id).outcome, ActivationResult::Outcome::changed);
    EXPECT_TRUE(Activation::isIntact(*catalog.link(id)));
}

TEST_F(LibraryTest, FacesOfACollectionShareOneLink) {
    const auto collection = scratch.write("Pair.ttc", makeCollection({dejaVuSans, dejaVuSerif}));
    importer.add({collection});
    const auto faces = catalog.allFaces();
    ASSERT_EQ(faces.size(), 2u);
    activation.activate(faces[0].id);
    activation.activate(faces[1].id);
    EXPECT_EQ(catalog.link(faces[0].id)->link, catalog.link(faces[1].id)->link);
    const auto link = catalog.link(faces[0].id)->link;

    activation.deactivate(faces[0].id);
    EXPECT_TRUE(std::filesystem::is_symlink(link)); // still in use by the second face
    activation.deactivate(faces[1].id);
    EXPECT_FALSE(std::filesystem::exists(std::filesystem::symlink_status(link)));
}

TEST_F(LibraryTest, ActivationFailsCleanlyForUnknownFacesAndVanishedFiles) {
    EXPECT_EQ(activation.activate(4242).outcome, ActivationResult::Outcome::failed);
    const auto copy = scratch.path() / "Vanishing.ttf";
    std::filesystem::copy_file(dejaVuSans, copy);
    importer.add({copy});
    std::filesystem::remove(copy);
    const ActivationResult result = activation.activate(catalog.allFaces().at(0).id);
    EXPECT_EQ(result.outcome, ActivationResult::Outcome::failed);
    EXPECT_NE(result.message.find("gone"), std::string::npos);
}

} // namespace
} // namespace Vellumine
