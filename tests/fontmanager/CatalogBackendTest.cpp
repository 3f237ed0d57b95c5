// The catalog's behaviour, the same for both back-ends: an SQLite file and a PostgreSQL
// database of a private cluster. What only a shared library does (stored bytes, more than
// one workstation) follows at the end.
#include "FontFixtures.h"
#include "PrivatePostgres.h"

#include "fontmanager/Activation.h"
#include "fontmanager/FaceReader.h"
#include "fontmanager/LibraryChanges.h"
#include "fontmanager/LibraryCheck.h"
#include "fontmanager/LibraryImporter.h"
#include "fontmanager/OpenCatalog.h"
#include "fontmanager/PostgresCatalog.h"
#include "fontmanager/Sha256.h"

#include <gtest/gtest.h>

#include <fstream>

namespace Vellumine {

// Test names say which back-end, rather than its bytes.
void PrintTo(LibraryLocation::Kind kind, std::ostream* out) {
    *out << (kind == LibraryLocation::Kind::sqlite ? "SQLite" : "PostgreSQL");
}

namespace {

using namespace VellumineTest;
using Outcome = ActivationResult::Outcome;

class CatalogBackend : public testing::TestWithParam<LibraryLocation::Kind> {
protected:
    void SetUp() override {
        usePrivateXdgFolders(scratch.path());
        if (GetParam() == LibraryLocation::Kind::postgresql) {
            PrivatePostgres& cluster = PrivatePostgres::shared();
            if (!cluster.available()) {
                GTEST_SKIP() << cluster.whyNot();
            }
            location = LibraryLocation::parse(cluster.createDatabase(), "test");
        } else {
            location = LibraryLocation::sqliteFile(scratch.path() / "library.db");
        }
        catalog = openCatalog(location);
        importer = std::make_unique<LibraryImporter>(*catalog, reader);
        activation = std::make_unique<Activation>(*catalog, activationFolder());
    }

    bool shared() const { return location.kind == LibraryLocation::Kind::postgresql; }
    std::filesystem::path activationFolder() const { return scratch.path() / "fonts"; }

    ScratchFolder scratch;
    LibraryLocation location;
    std::unique_ptr<Catalog> catalog;
    FaceReader reader;
    std::unique_ptr<LibraryImporter> importer;
    std::unique_ptr<Activation> activation;
};

TEST_P(CatalogBackend, FindsFacesByNameFamilyAndFileAndKeepsIdentifiersOnAddingAgain) {
    importer->add({dejaVuSans, dejaVuSerif, nimbusRomanType1});
    const auto sans = catalog->facesByPostScriptName("DejaVuSans");
    ASSERT_EQ(sans.size(), 1u);
    EXPECT_EQ(catalog->facesByFamily("dejavu SERIF").size(), 1u);
    EXPECT_EQ(catalog->facesOfFile(nimbusRomanType1).at(0).postScriptName, "NimbusRoman-Regular");
    EXPECT_EQ(catalog->faceCount(), 3);

    const ImportReport again = importer->add({dejaVuSans});
    EXPECT_EQ(again.facesKnown, 1);
    EXPECT_EQ(catalog->facesByPostScriptName("DejaVuSans").at(0).id, sans[0].id);
    const auto reopened = openCatalog(location);
    EXPECT_EQ(reopened->faceCount(), 3);
    EXPECT_EQ(reopened->face(sans[0].id)->file, dejaVuSans);
}

TEST_P(CatalogBackend, ActivatesDeactivatesAndRemovesFacesWithTheirLinks) {
    importer->add({nimbusRomanType1, dejaVuSans});
    const FaceRecord type1 = catalog->facesByPostScriptName("NimbusRoman-Regular").at(0);
    ASSERT_EQ(activation->activate(type1.id).outcome, Outcome::changed);
    const LinkRecord link = *catalog->link(type1.id);
    EXPECT_TRUE(Activation::isIntact(link));
    EXPECT_FALSE(link.metricsLink.empty()); // the .afm beside the outlines
    EXPECT_EQ(readFile(link.link), readFile(nimbusRomanType1));
    EXPECT_EQ(catalog->activeFaceCount(), 1);
    EXPECT_EQ(catalog->faceUse().size(), 1u);
    EXPECT_EQ(checkLibrary(*catalog, activationFolder(), false).problems.size(), 0u);

    const RemovalResult removed = activation->remove(type1.id);
    EXPECT_TRUE(removed.removed && removed.wasActive) << removed.message;
    EXPECT_TRUE(absent(link.link));
    EXPECT_TRUE(absent(link.metricsLink));
    EXPECT_FALSE(catalog->face(type1.id));
    EXPECT_EQ(catalog->faceCount(), 1);
    EXPECT_FALSE(activation->remove(type1.id).removed);
}

TEST_P(CatalogBackend, KeepsLinksRequestersSetsSettingsAndTheJournal) {
    importer->add({dejaVuSans, dejaVuSerif});
    const std::int64_t sans = catalog->facesByPostScriptName("DejaVuSans").at(0).id;
    const std::int64_t serif = catalog->facesByPostScriptName("DejaVuSerif").at(0).id;
    catalog->write([&] {
        catalog->recordLink({sans, "/l/a", "/t/a", {}, {}, "InDn"});
        catalog->recordLink({serif, "/l/a", "/t/a", {}, {}, ""});
        catalog->addRequester(sans, "QXP");
    });
    EXPECT_EQ(catalog->linkUsers("/l/a"), 2);
    EXPECT_EQ(catalog->autoActivatedLinks().size(), 1u);
    EXPECT_EQ(catalog->autoRequesters().size(), 2u);
    catalog->claimLink(sans);
    EXPECT_TRUE(catalog->autoActivatedLinks().empty());
    catalog->clearRequesters(sans);
    catalog->removeLink(serif);
    EXPECT_EQ(catalog->allLinks().size(), 1u);

    const std::int64_t set = catalog->createSet("Brochure");
    EXPECT_EQ(catalog->createSet("Brochure"), set);
    catalog->addToSet(set, sans);
    catalog->addToSet(set, sans);
    catalog->addToSet(set, serif);
    catalog->removeFromSet(set, serif);
    EXPECT_EQ(catalog->setMembers(set), std::vector<std::int64_t>{sans});
    EXPECT_EQ(catalog->sets().at(0).faceCount, 1);
    EXPECT_TRUE(catalog->deleteSet("Brochure"));
    EXPECT_FALSE(catalog->setByName("Brochure"));

    EXPECT_TRUE(catalog->autoActivation() && catalog->systemFonts() && catalog->autoDeactivation());
    catalog->setAutoActivation(false);
    catalog->setStoreUrl("https://fonts.example/?q=%s");
    EXPECT_FALSE(catalog->autoActivation());
    EXPECT_EQ(catalog->storeUrl(), "https://fonts.example/?q=%s");

    const std::int64_t before = catalog->lastChange();
    catalog->recordChange("FSBC");
    catalog->recordChange("FFSC");
    const auto changes = catalog->changesAfter(before);
    ASSERT_EQ(changes.size(), 2u);
    EXPECT_EQ(changes[1].kind, "FFSC");
    catalog->rememberTarget({"InDn", "VLM4"});
    catalog->rememberTarget({"InDn", "VLM5"});
    EXPECT_EQ(catalog->targets().at(0).eventClass, "VLM5");
    catalog->recordWindowlessRequest({0, "buy", 0, "InDn", "Missing", "", "OTF"});
    catalog->recordWindowlessRequest({0, "show", 0, "InDn", "Shown", "", ""});
    EXPECT_EQ(catalog->windowlessRequests("buy", 10).at(0).postScriptName, "Missing");
    EXPECT_EQ(catalog->windowlessRequests("", 10).size(), 2u);
}

TEST_P(CatalogBackend, AFailedWriteLeavesNothingBehind) {
    EXPECT_THROW(catalog->write([&] {
        catalog->createSet("Half");
        throw std::runtime_error("stopped half-way");
    }),
                 std::runtime_error);
    EXPECT_FALSE(catalog->setByName("Half"));
    catalog->write([&] { catalog->write([&] { catalog->createSet("Nested"); }); });
    EXPECT_TRUE(catalog->setByName("Nested"));
}

INSTANTIATE_TEST_SUITE_P(Both, CatalogBackend,
                         testing::Values(LibraryLocation::Kind::sqlite,
                                         LibraryLocation::Kind::postgresql),
                         [](const auto& info) {
                             return info.param == LibraryLocation::Kind::sqlite ? "SQLite"
                                                                                : "PostgreSQL";
                         });

// --- What only a shared library does ---

class SharedLibrary : public testing::Test {
protected:
    void SetUp() override {
        usePrivateXdgFolders(scratch.path());
        if (!cluster.available()) {
            GTEST_SKIP() << cluster.whyNot();
        }
        location = LibraryLocation::parse(cluster.createDatabase(), "test");
        catalog = std::make_unique<PostgresCatalog>(location, "studio-a");
    }

    PrivatePostgres& cluster = PrivatePostgres::shared();
    ScratchFolder scratch;
    LibraryLocation location;
    std::unique_ptr<PostgresCatalog> catalog;
    FaceReader reader;
};

TEST_F(SharedLibrary, StoresEachContentOnceAndDropsItWithItsLastFace) {
    const auto copy = scratch.write("Copy.ttf", readFile(dejaVuSans));
    LibraryImporter(*catalog, reader).add({dejaVuSans, copy, nimbusRomanType1});
    const auto faces = catalog->facesByPostScriptName("DejaVuSans");
    ASSERT_EQ(faces.size(), 2u);
    const std::string hash = *Sha256::ofFile(dejaVuSans);
    EXPECT_EQ(faces[0].contentHash, hash);
    EXPECT_EQ(faces[1].contentHash, hash);
    EXPECT_FALSE(catalog->facesByPostScriptName("NimbusRoman-Regular").at(0).metricsHash.empty());
    EXPECT_EQ(*catalog->storedContent(hash), readFile(dejaVuSans));

    catalog->removeFace(faces[0].id);
    EXPECT_TRUE(catalog->storedContent(hash)); // the copy still uses it
    catalog->removeFace(faces[1].id);
    EXPECT_FALSE(catalog->storedContent(hash));
}

TEST_F(SharedLibrary, AFileAddedAgainWithOtherBytesKeepsItsFaceAndDropsTheOldBytes) {
    const auto file = scratch.write("Body.ttf", readFile(dejaVuSans));
    LibraryImporter(*catalog, reader).add({file});
    const FaceRecord before = catalog->allFaces().at(0);
    scratch.write("Body.ttf", readFile(dejaVuSerif));
    const ImportReport again = LibraryImporter(*catalog, reader).add({file});
    EXPECT_EQ(again.facesKnown, 1);
    const FaceRecord after = *catalog->face(before.id);
    EXPECT_EQ(after.postScriptName, "DejaVuSerif");
    EXPECT_EQ(after.contentHash, *Sha256::ofFile(dejaVuSerif));
    EXPECT_FALSE(catalog->storedContent(before.contentHash));
}

TEST_F(SharedLibrary, ActivatesFromAVerifiedCacheAndFetchesADamagedCopyAgain) {
    const auto source = scratch.write("Source.ttf", readFile(dejaVuSans));
    LibraryImporter(*catalog, reader).add({source});
    std::filesystem::remove(source); // the workstation that added it may be gone
    const FaceRecord face = catalog->allFaces().at(0);
    const auto cache = scratch.path() / "cache" / "vellumine" / "store";
    Activation activation(*catalog, scratch.path() / "fonts");
    ASSERT_EQ(activation.activate(face.id).outcome, Outcome::changed);
    const LinkRecord link = *catalog->link(face.id);
    EXPECT_EQ(link.target, cache / face.contentHash);
    EXPECT_EQ(link.link.filename(), std::to_string(face.id) + "-Source.ttf");
    activation.deactivate(face.id);

    for (const std::string damage : {"truncated", ""}) {
        std::ofstream(cache / face.contentHash, std::ios::trunc) << damage;
        ASSERT_EQ(activation.activate(face.id).outcome, Outcome::changed) << damage;
        EXPECT_EQ(readFile(link.link), readFile(dejaVuSans));
        activation.deactivate(face.id);
    }
}

TEST_F(SharedLibrary, EachWorkstationKeepsItsOwnActivationsAndCountsAsOneSeat) {
    LibraryImporter(*catalog, reader).add({dejaVuSans, dejaVuSerif});
    PostgresCatalog other(location, "studio-b");
    const std::int64_t sans = catalog->facesByPostScriptName("DejaVuSans").at(0).id;
    const std::int64_t serif = catalog->facesByPostScriptName("DejaVuSerif").at(0).id;
    catalog->recordLink({sans, "/a/link", "/a/target", {}, {}, ""});
    other.recordLink({sans, "/b/link", "/b/target", {}, {}, "InDn"});
    other.recordLink({serif, "/b/serif", "/b/serif-target", {}, {}, ""});
    other.setAutoActivation(false);

    EXPECT_EQ(catalog->link(sans)->link, "/a/link");
    EXPECT_EQ(other.link(sans)->link, "/b/link");
    EXPECT_FALSE(catalog->face(serif)->active);
    EXPECT_TRUE(other.face(serif)->active);
    EXPECT_EQ(catalog->activeFaceCount(), 1);
    EXPECT_TRUE(catalog->autoActivatedLinks().empty());
    EXPECT_TRUE(catalog->autoActivation());
    const auto uses = catalog->faceUse();
    ASSERT_EQ(uses.size(), 2u);
    EXPECT_EQ(uses[0].faceId, sans);
    EXPECT_EQ(uses[0].workstations, 2);
    EXPECT_EQ(uses[1].workstations, 1);
}

TEST_F(SharedLibrary, AWorkstationHearsOnlyTheLibrarysChangesAndItsOwn) {
    PostgresCatalog other(location, "studio-b");
    const std::int64_t start = other.lastChange();
    catalog->recordChange(ChangeKind::activeFontsChanged);  // studio-a's fonts only
    catalog->recordChange(ChangeKind::libraryFilesChanged); // everybody's
    const auto heard = other.changesAfter(start);
    ASSERT_EQ(heard.size(), 1u);
    EXPECT_EQ(heard[0].kind, ChangeKind::libraryFilesChanged);
}

TEST_F(SharedLibrary, ErrorsNameTheLibraryWithoutItsPassword) {
    const auto nowhere = LibraryLocation::parse(
        "postgresql://ann:secret@/fonts?host=" + (scratch.path() / "none").string(), "test");
    try {
        PostgresCatalog unreachable(nowhere, "studio-a");
        FAIL() << "opened a library where there is none";
    } catch (const PostgresUnreachable& error) {
        const std::string message = error.what();
        EXPECT_NE(message.find("ann:***@"), std::string::npos) << message;
        EXPECT_EQ(message.find("secret"), std::string::npos) << message;
        EXPECT_NE(message.find("unreachable"), std::string::npos) << message;
    }
}

} // namespace
} // namespace Vellumine
