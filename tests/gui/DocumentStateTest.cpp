// The window's document state without the plug-in: the question before unsaved changes are
// given up, on every road that gives them up, the title and its modified mark, saving.
#include "GuiFixture.h"

#include "host/gui/RecentFiles.h"
#include "host/runtime/DocumentHub.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QMenu>
#include <QMimeData>
#include <QTemporaryDir>
#include <QUrl>

#include <sys/stat.h>

namespace {

using Answer = Galley::DocumentPrompts::Answer;
using GuiTest::Gui;
using namespace std::chrono_literals;

QByteArray bytesOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

class DocumentState : public Gui {
protected:
    void SetUp() override {
        start(false);
        Galley::RecentFiles().clear();
        ASSERT_TRUE(QFile::copy(SAMPLE_DOCUMENT, document));
        ASSERT_TRUE(QFile::copy(SAMPLE_DOCUMENT, other));
        ASSERT_TRUE(window->documents().open(document));
    }
    // A change the user would make in Find Font.
    void modify() {
        runtime->documents().replaceFaces({{"TeX Gyre Heros", "Bold"}}, {"DejaVu Sans", "Book"},
                                          false);
    }
    QString frontPath() const {
        auto* front = runtime->documents().front();
        return front ? QString::fromStdString(front->path()) : QString();
    }
    // Turns the loop until `done` (bounded).
    bool turnUntil(const std::function<bool()>& done) {
        return runtime->loop().runUntil(done, std::chrono::steady_clock::now() + 5s);
    }

    QTemporaryDir folder;
    QString document = folder.filePath("brochure.idml");
    QString other = folder.filePath("other.idml");
};

TEST_F(DocumentState, TheTitleNamesTheDocumentAndMarksItModifiedUntilItIsSaved) {
    EXPECT_EQ(window->windowTitle().toStdString(), "brochure.idml[*] — Galley");
    EXPECT_FALSE(window->isWindowModified());
    modify();
    EXPECT_TRUE(window->isWindowModified()) << "the views were told at once";
    window->menus().save->trigger();
    EXPECT_FALSE(window->isWindowModified());
    EXPECT_NE(bytesOf(document), bytesOf(SAMPLE_DOCUMENT));
    EXPECT_TRUE(prompts.errors.isEmpty()) << prompts.errors.join('\n').toStdString();
}

TEST_F(DocumentState, AnUnmodifiedDocumentIsGivenUpWithoutAQuestion) {
    window->menus().close->trigger();
    EXPECT_TRUE(prompts.askedAbout.isEmpty());
    EXPECT_EQ(runtime->documents().front(), nullptr);
    EXPECT_EQ(window->windowTitle().toStdString(), "Galley");
}

TEST_F(DocumentState, WithoutADocumentSavingClosingAndFindFontAreDisabled) {
    const Galley::MainMenus& menus = window->menus();
    for (QAction* action : {menus.save, menus.saveAs, menus.close, menus.findFont})
        EXPECT_TRUE(action->isEnabled()) << action->text().toStdString();
    window->menus().close->trigger();
    for (QAction* action : {menus.save, menus.saveAs, menus.close, menus.findFont})
        EXPECT_FALSE(action->isEnabled()) << action->text().toStdString();
    EXPECT_EQ(window->missingFontsText().toStdString(), "No document");
}

TEST_F(DocumentState, SaveAsAddsTheExtensionGivesTheUsualModeAndRenamesTheWindow) {
    const mode_t umaskBefore = ::umask(027);
    modify();
    prompts.saveTarget = folder.filePath("renamed");
    window->menus().saveAs->trigger();
    ::umask(umaskBefore);
    const QString written = folder.filePath("renamed.idml");
    struct stat info {};
    ASSERT_EQ(::stat(written.toLocal8Bit().constData(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0640u) << "0666 less the umask";
    EXPECT_EQ(window->windowTitle().toStdString(), "renamed.idml[*] — Galley");
    EXPECT_FALSE(window->isWindowModified());
    EXPECT_EQ(bytesOf(document), bytesOf(SAMPLE_DOCUMENT)) << "the original is untouched";
    EXPECT_EQ(Galley::RecentFiles().files().value(0), written);
}

TEST_F(DocumentState, SaveAsKeepsANameThatHasAnExtension) {
    prompts.saveTarget = folder.filePath("copy.v2.idml");
    window->menus().saveAs->trigger();
    EXPECT_TRUE(QFile::exists(folder.filePath("copy.v2.idml")));
    prompts.saveTarget = folder.filePath("copy.backup");
    window->menus().saveAs->trigger();
    EXPECT_TRUE(QFile::exists(folder.filePath("copy.backup")));
    EXPECT_FALSE(QFile::exists(folder.filePath("copy.backup.idml")));
}

TEST_F(DocumentState, ASaveThatFailsKeepsTheDocumentAndSaysWhy) {
    modify();
    prompts.answers = {Answer::save};
    // Nothing can be renamed over a folder, whoever runs the test.
    ASSERT_TRUE(QFile::remove(document));
    ASSERT_TRUE(QDir().mkdir(document));
    window->close();
    EXPECT_FALSE(window->closed());
    EXPECT_TRUE(window->isWindowModified());
    EXPECT_EQ(prompts.errors.size(), 1);
}

// Every road that gives up the document, with each answer to the question.
enum class Road { closeButton, quit, open, closeDocument, recent, drop };

struct PromptCase {
    Road road;
    Answer answer;
};

class EveryRoad : public DocumentState, public ::testing::WithParamInterface<PromptCase> {
protected:
    void take(Road road) {
        switch (road) {
        case Road::closeButton:
            window->close();
            break;
        case Road::quit:
            window->menus().quit->trigger();
            break;
        case Road::open:
            prompts.toOpen = other;
            window->menus().open->trigger();
            break;
        case Road::closeDocument:
            window->menus().close->trigger();
            break;
        case Road::recent: {
            Galley::RecentFiles().add(other);
            emit window->menus().recent->aboutToShow();
            const auto entries = window->menus().recent->actions();
            for (QAction* entry : entries)
                if (entry->toolTip() == other)
                    entry->trigger();
            break;
        }
        case Road::drop: {
            QMimeData data;
            data.setUrls(
                {QUrl::fromLocalFile(folder.filePath("notes.txt")), QUrl::fromLocalFile(other)});
            window->openDropped(&data);
            break;
        }
        }
    }
    // Whether the document was given up (the window closed, another document or none is
    // open).
    bool gaveUp() const { return window->closed() || frontPath() != document; }
};

TEST_P(EveryRoad, AsksBeforeGivingUpChangesAndDoesWhatTheAnswerSays) {
    const PromptCase& c = GetParam();
    modify();
    prompts.answers = {c.answer};
    take(c.road);
    turnUntil(
        [&] { return !prompts.askedAbout.isEmpty() && (gaveUp() || c.answer == Answer::cancel); });
    ASSERT_EQ(prompts.askedAbout, QStringList{"brochure.idml"});
    const bool saved = bytesOf(document) != bytesOf(SAMPLE_DOCUMENT);
    switch (c.answer) {
    case Answer::save:
        EXPECT_TRUE(gaveUp());
        EXPECT_TRUE(saved);
        break;
    case Answer::discard:
        EXPECT_TRUE(gaveUp());
        EXPECT_FALSE(saved);
        break;
    case Answer::cancel:
        EXPECT_FALSE(gaveUp());
        EXPECT_FALSE(saved);
        EXPECT_TRUE(window->isWindowModified()) << "the changes are still there";
        break;
    }
}

std::vector<PromptCase> everyCase() {
    std::vector<PromptCase> cases;
    for (Road road :
         {Road::closeButton, Road::quit, Road::open, Road::closeDocument, Road::recent, Road::drop})
        for (Answer answer : {Answer::save, Answer::discard, Answer::cancel})
            cases.push_back({road, answer});
    return cases;
}

std::string caseName(const ::testing::TestParamInfo<PromptCase>& info) {
    static const char* const roads[] = {"CloseButton",   "Quit",   "Open",
                                        "CloseDocument", "Recent", "Drop"};
    static const char* const answers[] = {"Save", "Discard", "Cancel"};
    return std::string(roads[static_cast<int>(info.param.road)]) +
           answers[static_cast<int>(info.param.answer)];
}

INSTANTIATE_TEST_SUITE_P(Window, EveryRoad, ::testing::ValuesIn(everyCase()), caseName);

TEST(RecentFiles, KeepsTheNewestFirstOnceEachWithinItsCapacityAndOnlyWhatExists) {
    QTemporaryDir folder;
    Galley::RecentFiles recent;
    recent.clear();
    QStringList made;
    for (int i = 0; i < Galley::RecentFiles::capacity + 2; ++i) {
        made << folder.filePath(QString("d%1.idml").arg(i));
        QFile file(made.back());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        recent.add(made.back());
    }
    recent.add(made[Galley::RecentFiles::capacity + 1]); // again: stays once, first
    QStringList files = recent.files();
    ASSERT_EQ(files.size(), Galley::RecentFiles::capacity);
    EXPECT_EQ(files.front(), made.back());
    EXPECT_EQ(files.back(), made[2]);
    QFile::remove(made.back());
    files = recent.files();
    EXPECT_EQ(files.size(), Galley::RecentFiles::capacity - 1);
    EXPECT_FALSE(files.contains(made.back()));
}

} // namespace
