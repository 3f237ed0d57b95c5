// vellumine's window without widgets: what the library tree, its search, previews, details,
// sets and duplicates show, and what its actions do, on a private library.
#include "FontFixtures.h"

#include "fontmanager/FaceReader.h"
#include "fontmanager/LibraryImporter.h"
#include "fontmanager/SqliteCatalog.h"
#include "fontmanager/window/ImportJob.h"
#include "fontmanager/window/WindowModel.h"

#include <QAbstractItemModelTester>
#include <QApplication>

#include <gtest/gtest.h>

QT_BEGIN_NAMESPACE
inline void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}
QT_END_NAMESPACE

namespace Vellumine::Window {
namespace {

using namespace VellumineTest;

const std::filesystem::path texGyre = "/usr/share/texmf/fonts/opentype/public/tex-gyre";
const QString sample = QStringLiteral("Hamburgefonstiv");

class WindowModelTest : public testing::Test {
protected:
    void SetUp() override {
        usePrivateXdgFolders(scratch.path());
        scratch.write("system/DejaVuSerif.ttf", readFile(dejaVuSerif));
        const auto catalogFile = LibraryPaths::fromEnvironment().catalogFile();
        SqliteCatalog catalog(catalogFile);
        FaceReader reader;
        copy = scratch.write("copies/texgyrepagella-regular.otf",
                             readFile(texGyre / "texgyrepagella-regular.otf"));
        LibraryImporter(catalog, reader)
            .add({nimbusRomanType1, nimbusRomanOpenType, dejaVuSerif,
                  texGyre / "texgyrepagella-regular.otf", copy});
        model = std::make_unique<WindowModel>(LibraryPaths::fromEnvironment());
    }

    // Face rows of the filter as "PostScriptName state", family by family.
    QStringList shown() {
        QStringList rows;
        const QAbstractItemModel& filter = model->filter();
        for (int f = 0; f < filter.rowCount(); ++f) {
            const QModelIndex family = filter.index(f, 0);
            for (int i = 0; i < filter.rowCount(family); ++i) {
                const FaceEntry* entry = model->faceAt(filter.index(i, 0, family));
                rows << QString::fromStdString(entry->face.postScriptName) + " " + entry->state();
            }
        }
        return rows;
    }

    std::int64_t id(const std::string& postScriptName, std::size_t which = 0) {
        return model->catalog().facesByPostScriptName(postScriptName).at(which).id;
    }

    ScratchFolder scratch;
    // The system has DejaVu Serif (copied there in SetUp), as the library does.
    PrivateFontconfig system{{scratch.path() / "system"}};
    std::filesystem::path copy;
    std::unique_ptr<WindowModel> model;
};

TEST_F(WindowModelTest, TheLibraryByFamilyWithEachFacesStateAndOrigin) {
    QAbstractItemModelTester tester(&model->library(),
                                    QAbstractItemModelTester::FailureReportingMode::Fatal);
    model->catalog().write([&] {
        model->catalog().recordLink(
            {id("DejaVuSerif"), scratch.path() / "l", dejaVuSerif, {}, {}, "InDn"});
        model->catalog().addRequester(id("DejaVuSerif"), "XPRS");
    });
    model->activate({id("NimbusRoman-Regular", 1)});
    const QStringList rows = shown();
    for (const char* row : {"NimbusRoman-Regular inactive", "NimbusRoman-Regular active",
                            "DejaVuSerif active for Galley, XPRS", "DejaVuSerif on the system",
                            "TeXGyrePagella-Regular inactive"}) {
        EXPECT_TRUE(rows.contains(row)) << row << "\n" << rows.join("\n").toStdString();
    }
    QStringList families;
    for (const auto& family : model->library().families()) {
        families << family.name;
    }
    EXPECT_EQ(families, QStringList({"DejaVu Serif", "Nimbus Roman", "TeX Gyre Pagella"}));
}

TEST_F(WindowModelTest, SearchFindsFamilyStylePostScriptNameOrFile) {
    struct Case {
        QString text;
        int faces;
    };
    for (const Case& c : {Case{"pagella", 2}, Case{"REGULAR", 4}, Case{"NimbusRoman-", 2},
                          Case{"copies/", 1}, Case{".t1", 1}, Case{"nothing like it", 0}}) {
        model->setSearch(c.text);
        EXPECT_EQ(shown().size(), c.faces) << c.text.toStdString();
    }
}

TEST_F(WindowModelTest, AShownFaceIsFoundByContainerElseByNameAndNamedInTheTitle) {
    model->setSearch(QStringLiteral("DejaVu")); // hides what is asked for: cleared
    const QModelIndex byContainer = model->locate(id("TeXGyrePagella-Regular", 1), "Elsewhere");
    ASSERT_TRUE(byContainer.isValid());
    EXPECT_EQ(model->faceAt(byContainer)->face.file, copy);
    EXPECT_EQ(WindowModel::titleFor(model->faceAt(byContainer)),
              "TeXGyrePagella-Regular — Vellumine");
    const QModelIndex byName = model->locate(999, QStringLiteral("NimbusRoman-Regular"));
    ASSERT_TRUE(byName.isValid());
    EXPECT_EQ(model->faceAt(byName)->face.id, id("NimbusRoman-Regular"));
    EXPECT_FALSE(model->locate(0, QStringLiteral("Nowhere-Bold")).isValid());
}

TEST_F(WindowModelTest, PreviewsAreDrawnFromTheFileWithoutActivatingAndDamageIsSaidPlainly) {
    const auto inkOf = [](const QImage& image) {
        int dark = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                dark += qGray(image.pixel(x, y)) < 128 ? 1 : 0;
            }
        }
        return dark;
    };
    for (const auto& entry : model->library().families()) {
        for (const auto& face : entry.faces) {
            const Preview preview = model->preview(face, sample, 32, 400);
            ASSERT_TRUE(preview.ok()) << face.face.file << preview.problem.toStdString();
            EXPECT_GT(inkOf(preview.image), 200) << face.face.file;
        }
    }
    EXPECT_EQ(model->catalog().activeFaceCount(), 0);
    EXPECT_TRUE(absent(LibraryPaths::fromEnvironment().activationFolder()));

    FaceEntry damaged{model->catalog().face(id("TeXGyrePagella-Regular", 1)).value(), {}};
    std::filesystem::resize_file(copy, 600);
    EXPECT_EQ(model->preview(damaged, sample, 32, 400).problem,
              "Cannot preview: texgyrepagella-regular.otf is not a readable font.");
    std::filesystem::remove(copy);
    EXPECT_EQ(model->preview(damaged, sample, 32, 400).problem,
              "Cannot preview: texgyrepagella-regular.otf is gone.");
    const auto rows = model->detailRows(damaged);
    EXPECT_EQ(rows.back().first, "Problem");
}

TEST_F(WindowModelTest, DetailsComeFromTheNameTableOrTheType1FontInfo) {
    const auto details = [&](std::int64_t face) {
        std::map<QString, QString> rows;
        for (const auto& [label, value] : model->detailRows({*model->catalog().face(face), {}})) {
            rows[label] = value;
        }
        return rows;
    };
    auto otf = details(id("NimbusRoman-Regular", 1));
    EXPECT_EQ(otf["Format"], "OT_T1 (CFF)");
    EXPECT_TRUE(otf["Version"].startsWith("Version ")) << otf["Version"].toStdString();
    auto type1 = details(id("NimbusRoman-Regular", 0));
    EXPECT_EQ(type1["Format"], "T1 (Type 1)");
    EXPECT_FALSE(type1["Version"].isEmpty());
    EXPECT_EQ(type1.count("Vendor URL"), 0u);
    auto dejaVu = details(id("DejaVuSerif"));
    EXPECT_EQ(dejaVu["Foundry"], "DejaVu fonts team");
    EXPECT_TRUE(dejaVu["Vendor URL"].startsWith("http")) << dejaVu["Vendor URL"].toStdString();
    EXPECT_TRUE(dejaVu["Licence"].contains("Bitstream")) << dejaVu["Licence"].toStdString();
}

TEST_F(WindowModelTest, SetsAreMadeFilledAndActivatedFromTheWindow) {
    model->createSet(QStringLiteral("Book"));
    model->addToSet(QStringLiteral("Book"), {id("DejaVuSerif"), id("NimbusRoman-Regular", 1)});
    EXPECT_EQ(model->sets().item(0, 1)->text(), "2");
    EXPECT_EQ(model->activateSet(QStringLiteral("Book")).size(), 2);
    EXPECT_EQ(model->catalog().activeFaceCount(), 2);
    EXPECT_THROW(model->createSet(QString()), std::invalid_argument);
    EXPECT_THROW(model->addToSet(QStringLiteral("Book"), {12345}), std::runtime_error);
    model->deactivateSet(QStringLiteral("Book"));
    EXPECT_EQ(model->catalog().activeFaceCount(), 0);
}

TEST_F(WindowModelTest, DuplicatesAreListedWithWhatTellsThemApart) {
    QStringList groups;
    const QStandardItemModel& duplicates = model->duplicates();
    for (int row = 0; row < duplicates.rowCount(); ++row) {
        groups << duplicates.item(row, 0)->text() + ": " + duplicates.item(row, 1)->text() + " (" +
                      QString::number(duplicates.item(row, 0)->rowCount()) + ")";
    }
    EXPECT_EQ(groups, QStringList({"NimbusRoman-Regular: differ in version, format, file (2)",
                                   "TeXGyrePagella-Regular: differ in file (2)"}));
}

TEST_F(WindowModelTest, AddingAFolderReportsProgressAndReloadsTheLibrary) {
    ImportJob job(LibraryLocation::sqliteFile(LibraryPaths::fromEnvironment().catalogFile()),
                  {urwOpenTypeFolder});
    std::vector<int> progress;
    QObject::connect(&job, &ImportJob::progress, [&](int done, int) { progress.push_back(done); });
    job.start();
    ASSERT_TRUE(job.wait(60000));
    QCoreApplication::processEvents();
    EXPECT_GE(progress.size(), 3u);        // a start, steps, an end
    EXPECT_EQ(job.report().facesKnown, 1); // NimbusRoman-Regular.otf
    model->libraryFilesChanged();
    model->setSearch(QStringLiteral("P052"));
    EXPECT_EQ(shown().size(), 4);
}

class OffscreenApplication : public testing::Environment {
public:
    void SetUp() override {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        static int argc = 1;
        static char name[] = "fontmanager_window_tests";
        static char* argv[] = {name, nullptr};
        application = std::make_unique<QApplication>(argc, argv);
    }
    void TearDown() override { application.reset(); }

private:
    std::unique_ptr<QApplication> application;
};

[[maybe_unused]] auto* const environment =
    testing::AddGlobalTestEnvironment(new OffscreenApplication);

} // namespace
} // namespace Vellumine::Window
