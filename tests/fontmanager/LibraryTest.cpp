#include "FontFixtures.h"

#include "fontmanager/Activation.h"
#include "fontmanager/FaceReader.h"
#include "fontmanager/FileStamp.h"
#include "fontmanager/LibraryCheck.h"
#include "fontmanager/LibraryImporter.h"
#include "fontmanager/Sqlite.h"
#include "fontmanager/SqliteCatalog.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <thread>
#include <tuple>

#include <sys/stat.h>

namespace Vellumine {
namespace {

using namespace VellumineTest;

TEST(FaceReader, ClassifiesFacesAsTheHostDoesAndReadsEveryFaceOfACollection) {
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
    const auto collection = scratch.write("Pair.ttc", makeCollection({dejaVuSans, dejaVuSerif}));
    const FontFileReading pair = reader.read(collection);
    ASSERT_EQ(pair.faces.size(), 2u) << (pair.problems.empty() ? "" : pair.problems[0]);
    EXPECT_EQ(pair.faces[1].postScriptName + " " + std::to_string(pair.faces[1].faceIndex),
              "DejaVuSerif 1");
    EXPECT_EQ(pair.faces[1].type, FaceType::trueType);
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

// A stamp stands for the file as it was: anything done to the file after a clock tick
// changes it, and a file changed within the current tick gets none.
TEST(FileStamp, ChangesWithAnyChangeOfTheFileAndIsWithheldWithinTheTickOfOne) {
    ScratchFolder scratch;
    const auto file = scratch.write("Face.ttf", readFile(dejaVuSans));
    const auto pastTheTick = [] { std::this_thread::sleep_for(std::chrono::milliseconds(12)); };
    enum class Then { same, differs };
    const std::vector<std::tuple<const char*, std::function<void()>, Then>> cases = {
        {"left alone", [] {}, Then::same},
        {"written again with the same bytes",
         [&] { scratch.write("Face.ttf", readFile(dejaVuSans)); }, Then::differs},
        {"another file moved into its place",
         [&] {
             scratch.write("Other.ttf", readFile(dejaVuSans));
             pastTheTick();
             std::filesystem::rename(scratch.path() / "Other.ttf", file);
         },
         Then::differs},
        {"its permissions changed",
         [&] { std::filesystem::permissions(file, std::filesystem::perms::owner_read); },
         Then::differs},
    };
    for (const auto& [what, change, then] : cases) {
        pastTheTick();
        const std::string before = fileStamp(file);
        ASSERT_FALSE(before.empty()) << what;
        change();
        pastTheTick();
        const std::string after = fileStamp(file);
        EXPECT_FALSE(after.empty()) << what;
        EXPECT_EQ(after == before, then == Then::same) << what;
    }
    scratch.write("Fresh.ttf", "just written");
    EXPECT_EQ(fileStamp(scratch.path() / "Fresh.ttf"), "") << "changed within this tick";
    EXPECT_EQ(fileStamp(scratch.path() / "missing.ttf"), "");
}

class LibraryTest : public testing::Test {
protected:
    std::filesystem::path activationFolder() const {
        return scratch.path() / "fonts" / "vellumine";
    }

    ScratchFolder scratch;
    SqliteCatalog catalog{scratch.path() / "vellumine" / "library.db"};
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

TEST_F(LibraryTest, AddsInBatchesInNameOrderAndStreamsItsMessages) {
    const auto folder = scratch.path() / "incoming";
    for (const char* name : {"b/2.ttf", "a/1.ttf", "0.ttf", "a/0.ttf"}) {
        std::filesystem::create_directories((folder / name).parent_path());
        std::filesystem::copy_file(dejaVuSans, folder / name);
    }
    scratch.write("incoming/a/broken.ttf", "garbage");
    LibraryImporter batched(catalog, reader, 2);
    std::vector<std::string> progress;
    std::vector<std::string> problems;
    batched.sendMessagesTo([&](LibraryImporter::MessageKind kind, const std::string& message) {
        (kind == LibraryImporter::MessageKind::problem ? problems : progress).push_back(message);
    });

    const ImportReport report = batched.add({folder});
    EXPECT_EQ(report.facesAdded, 4);
    EXPECT_EQ(report.filesSkipped, 1);
    EXPECT_TRUE(report.messages.empty());
    EXPECT_EQ(progress.size(), 4u);
    ASSERT_EQ(problems.size(), 1u);
    EXPECT_NE(problems[0].find("broken.ttf"), std::string::npos);
    // A folder's own files first, then its folders, each in name order.
    std::vector<std::string> order;
    for (const auto& face : catalog.facesByPostScriptName("DejaVuSans"))
        order.push_back(std::filesystem::relative(face.file, folder).string());
    EXPECT_EQ(order, (std::vector<std::string>{"0.ttf", "a/0.ttf", "a/1.ttf", "b/2.ttf"}));
}

TEST_F(LibraryTest, ReAddingKeepsIdentifiersAcrossReopening) {
    importer.add({dejaVuSans, nimbusRomanOpenType});
    const auto first = catalog.allFaces();
    ASSERT_EQ(first.size(), 2u);

    const ImportReport again = importer.add({dejaVuSans, dejaVuSans, urwOpenTypeFolder});
    EXPECT_EQ(again.facesKnown, 3); // DejaVuSans twice, NimbusRoman-Regular once in the folder
    EXPECT_FALSE(again.missingPaths);
    SqliteCatalog reopened(scratch.path() / "vellumine" / "library.db");
    EXPECT_EQ(reopened.facesByPostScriptName("DejaVuSans").at(0).id, first[0].id);
    EXPECT_EQ(reopened.facesByPostScriptName("NimbusRoman-Regular").size(), 1u);
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
    EXPECT_TRUE(absent(metrics));
    EXPECT_FALSE(catalog.face(face.id)->active);
    EXPECT_EQ(activation.deactivate(face.id).outcome, ActivationResult::Outcome::unchanged);

    // ...and activation does not overwrite it either.
    EXPECT_EQ(activation.activate(face.id).outcome, ActivationResult::Outcome::failed);
    EXPECT_EQ(readFile(link), "user's file");
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
    EXPECT_TRUE(absent(link));
}

TEST_F(LibraryTest, ActivationRemakesARemovedLinkAndFailsCleanlyForUnknownOrVanishedFiles) {
    importer.add({dejaVuSans});
    const std::int64_t id = catalog.allFaces().at(0).id;
    activation.activate(id);
    std::filesystem::remove(catalog.link(id)->link);
    EXPECT_EQ(activation.activate(id).outcome, ActivationResult::Outcome::changed);
    EXPECT_TRUE(Activation::isIntact(*catalog.link(id)));

    EXPECT_EQ(activation.activate(4242).outcome, ActivationResult::Outcome::failed);
    const auto copy = scratch.path() / "Vanishing.ttf";
    std::filesystem::copy_file(dejaVuSans, copy);
    importer.add({copy});
    std::filesystem::remove(copy);
    const ActivationResult result =
        activation.activate(catalog.facesByPostScriptName("DejaVuSans").at(1).id);
    EXPECT_EQ(result.outcome, ActivationResult::Outcome::failed);
    EXPECT_NE(result.message.find("gone"), std::string::npos);
}

TEST_F(LibraryTest, RefusesFilesItCannotUseWithoutBlockingOrLosingAnything) {
    const auto fifo = scratch.path() / "pipe.ttf";
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    const auto replaced = scratch.write("Replaced.ttf", readFile(dejaVuSans));
    const ImportReport report = importer.add({fifo, replaced});
    EXPECT_EQ(report.filesSkipped, 1);
    EXPECT_NE(report.messages.at(0).find("not a regular file"), std::string::npos);

    scratch.write("Replaced.ttf", "garbage where a font was");
    const ActivationResult result = activation.activate(catalog.allFaces().at(0).id);
    EXPECT_EQ(result.outcome, ActivationResult::Outcome::failed);
    EXPECT_NE(result.message.find("no longer holds"), std::string::npos) << result.message;
    EXPECT_EQ(readFile(replaced), "garbage where a font was");
}

// A catalog of the schema before file stamps: its faces keep their identifiers and are
// verified by reading until they are added again, which records their stamps.
TEST_F(LibraryTest, ACatalogFromBeforeFileStampsIsMigratedAndItsFacesStillVerified) {
    importer.add({dejaVuSans});
    const FaceRecord added = catalog.allFaces().at(0);
    EXPECT_EQ(added.fileStamp, fileStamp(dejaVuSans));
    {
        SqliteDatabase older(scratch.path() / "vellumine" / "library.db");
        older.execute("ALTER TABLE faces DROP COLUMN file_stamp; PRAGMA user_version = 3;");
    }
    SqliteCatalog migrated(scratch.path() / "vellumine" / "library.db");
    ASSERT_EQ(migrated.allFaces().size(), 1u);
    EXPECT_EQ(migrated.allFaces().at(0).id, added.id);
    EXPECT_EQ(migrated.allFaces().at(0).fileStamp, "");
    Activation activating(migrated, activationFolder());
    EXPECT_EQ(activating.activate(added.id).outcome, ActivationResult::Outcome::changed);
    LibraryImporter again(migrated, reader);
    again.add({dejaVuSans});
    EXPECT_EQ(migrated.face(added.id)->fileStamp, fileStamp(dejaVuSans));
}

TEST_F(LibraryTest, ActivatesFilesWithNamesAsLongAsAFolderAllows) {
    const std::string stem(250, 'x');
    for (const std::string& name : {stem + ".ttf", std::string(70, 'y') + "\xC3\xA9" + stem}) {
        const auto file = scratch.path() / name.substr(0, 255);
        std::filesystem::copy_file(dejaVuSans, file);
        const auto added = catalog.addFace(file, {}, reader.read(file).faces.at(0));
        ASSERT_TRUE(activation.activate(added.id).succeeded()) << name;
        const auto link = catalog.link(added.id)->link.filename().string();
        EXPECT_LE(link.size(), 255u);
        EXPECT_EQ(std::filesystem::read_symlink(catalog.link(added.id)->link), file);
    }
}

TEST_F(LibraryTest, CheckFindsAndRepairsWhatAKilledCommandLeftBehind) {
    const auto collection = scratch.write("Pair.ttc", makeCollection({dejaVuSans, dejaVuSerif}));
    importer.add({collection, nimbusRomanType1});
    const auto faces = catalog.allFaces();
    ASSERT_EQ(faces.size(), 3u);
    ASSERT_TRUE(activation.activate(faces[0].id).succeeded());
    ASSERT_TRUE(activation.activate(faces[1].id).succeeded());
    std::filesystem::remove(catalog.link(faces[0].id)->link); // both faces lose their link
    // Killed between linking and recording; and a file of the user's, never ours to touch.
    const auto leftover = activationFolder() / Activation::linkName(faces[2].id, faces[2].file);
    std::filesystem::create_symlink(faces[2].file, leftover);
    const auto users = scratch.write("fonts/vellumine/9-mine.ttf", "user's file");
    catalog.database().execute("UPDATE faces SET type = 'SVG' WHERE id = " +
                               std::to_string(faces[1].id));

    EXPECT_EQ(catalog.allFaces().size(), 2u); // the unknown type does not break listing
    EXPECT_EQ(checkLibrary(catalog, activationFolder(), false).problems.size(), 4u);
    const auto repaired = checkLibrary(catalog, activationFolder(), true);
    EXPECT_EQ(repaired.repairs.size(), 3u);
    EXPECT_EQ(catalog.activeFaceCount(), 0);
    EXPECT_TRUE(absent(leftover));
    EXPECT_EQ(readFile(users), "user's file");
    const auto after = checkLibrary(catalog, activationFolder(), false).problems;
    ASSERT_EQ(after.size(), 1u);
    EXPECT_NE(after[0].find("unknown type 'SVG'"), std::string::npos);
}

void expectErrorNaming(const std::filesystem::path& file, const std::function<void()>& action) {
    try {
        action();
        ADD_FAILURE() << "no error for " << file;
    } catch (const SqliteError& error) {
        EXPECT_NE(std::string(error.what()).find(file.string()), std::string::npos);
    }
}

TEST_F(LibraryTest, ACatalogThatCannotBeWrittenCanStillBeReadAndErrorsNameIt) {
    importer.add({dejaVuSans});
    const auto file = scratch.path() / "vellumine" / "library.db";
    SqliteCatalog readOnly(file, SqliteCatalog::Access::readOnly);
    EXPECT_EQ(readOnly.allFaces().size(), 1u);
    EXPECT_TRUE(readOnly.autoActivation());
    expectErrorNaming(file, [&] { readOnly.setAutoActivation(false); });
    const auto garbage = scratch.write("garbage.db", std::string(4096, 'g'));
    expectErrorNaming(garbage, [&] { SqliteCatalog broken(garbage); });
}

} // namespace
} // namespace Vellumine
