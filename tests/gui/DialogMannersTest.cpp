// The plug-in's dialogs as desktop windows: over the window that opened them, the title
// naming the document throughout, the keyboard back where it was after they close, and
// access keys on their buttons.
#include "GuiFixture.h"

#include "host/gui/AccessKeys.h"
#include "host/gui/ScreenFit.h"

#include <QApplication>
#include <QFile>
#include <QListWidget>
#include <QPushButton>
#include <QScreen>
#include <QTemporaryDir>
#include <QTest>
#include <QTranslator>
#include <QTreeView>

#include <set>

namespace {

using GuiTest::Gui;
using namespace std::chrono_literals;

class DialogManners : public Gui {
protected:
    void SetUp() override {
        Gui::SetUp();
        vellumine.showWindow = true; // the fonts dialog asks about the missing font
        window->show();
        QApplication::setActiveWindow(window.get());
    }
    void selectTheMissingFont() {
        auto* tree = inFront<QTreeView>("fontTree");
        tree->selectionModel()->select(tree->model()->index(0, 0),
                                       QItemSelectionModel::Select | QItemSelectionModel::Rows);
    }
};

TEST_F(DialogManners, TheTitleNamesTheDocumentWhileItsDialogIsUpAndAfterEscape) {
    QTemporaryDir folder;
    const QString second = folder.filePath("second.idml");
    ASSERT_TRUE(QFile::copy(SAMPLE_DOCUMENT, second));
    QStringList whileUp;
    user->then([&] { return frontIs("Missing Fonts"); },
               [&] {
                   whileUp << window->windowTitle();
                   QTest::keyClick(front()->window(), Qt::Key_Escape);
               });
    // Another document opened over it: its own name, not the one before.
    user->then([&] { return !front() && runtime->documents().front(); },
               [&] { window->openLater(second); });
    user->then([&] { return frontIs("Missing Fonts"); },
               [&] {
                   whileUp << window->windowTitle();
                   QTest::keyClick(front()->window(), Qt::Key_Escape);
               });
    ASSERT_TRUE(openAndPlay()) << "steps played: " << user->played();
    EXPECT_EQ(whileUp, (QStringList{"brochure.idml[*] — Galley", "second.idml[*] — Galley"}));
    EXPECT_EQ(window->windowTitle().toStdString(), "second.idml[*] — Galley");
    EXPECT_FALSE(window->isWindowModified());
}

TEST_F(DialogManners, ADialogOpensCentredOverTheWindowThatOpenedItAndStaysAboveIt) {
    // The offscreen screen is 800×600: the window fills it, the fonts dialog is as wide.
    window->setGeometry(0, 0, 800, 600);
    struct Placed {
        QWidget* parent = nullptr;
        QPoint centre;
    } fonts, replace;
    QPoint fontsCentreLater;
    user->then([&] { return frontIs("Missing Fonts"); },
               [&] {
                   fonts = {front()->window()->parentWidget(),
                            front()->window()->frameGeometry().center()};
                   selectTheMissingFont();
               });
    user->then(
        [&] {
            return frontIs("Missing Fonts") && inFront<QPushButton>("replaceButton")->isEnabled();
        },
        [&] { QTest::mouseClick(inFront<QPushButton>("replaceButton"), Qt::LeftButton); });
    user->then([&] { return frontIs("Replace Font"); },
               [&] {
                   replace = {front()->window()->parentWidget(),
                              front()->window()->frameGeometry().center()};
                   fontsCentreLater = replace.parent->frameGeometry().center();
                   QTest::keyClick(front()->window(), Qt::Key_Escape);
               });
    user->then([&] { return frontIs("Missing Fonts"); },
               [&] { QTest::keyClick(front()->window(), Qt::Key_Escape); });
    ASSERT_TRUE(openAndPlay()) << "steps played: " << user->played();
    EXPECT_EQ(fonts.parent, window.get());
    EXPECT_LE(std::abs(fonts.centre.y() - window->frameGeometry().center().y()), 2);
    ASSERT_NE(replace.parent, nullptr);
    EXPECT_NE(replace.parent, window.get()) << "Replace Font belongs to the fonts dialog";
    EXPECT_LE((replace.centre - fontsCentreLater).manhattanLength(), 4)
        << "Replace Font at " << replace.centre.x() << "," << replace.centre.y()
        << ", fonts dialog at " << fontsCentreLater.x() << "," << fontsCentreLater.y();
}

TEST_F(DialogManners, AfterTheLastDialogClosesTheKeyboardIsBackInTheMainWindow) {
    user->then([&] { return frontIs("Missing Fonts"); },
               [&] { QTest::mouseClick(inFront<QPushButton>("cancelButton"), Qt::LeftButton); });
    ASSERT_TRUE(openAndPlay());
    EXPECT_EQ(QApplication::activeWindow(), window.get());
    EXPECT_EQ(QApplication::focusWidget(), &window->view());
}

TEST_F(DialogManners, AfterReplaceFontClosesOKIsTheFontsDialogsDefaultAndHasTheFocus) {
    struct Seen {
        bool okDefault = false, cancelDefault = true, okFocused = false;
    } seen;
    user->then([&] { return frontIs("Missing Fonts"); }, [&] { selectTheMissingFont(); });
    user->then(
        [&] {
            return frontIs("Missing Fonts") && inFront<QPushButton>("replaceButton")->isEnabled();
        },
        [&] {
            // As a user does it: the button takes the focus (and, being a dialog's button,
            // the default) before it is pressed.
            auto* replace = inFront<QPushButton>("replaceButton");
            replace->setFocus();
            QTest::keyClick(replace, Qt::Key_Space);
        });
    user->then([&] { return frontIs("Replace Font"); },
               [&] {
                   inFront<QPushButton>("cancelButton")->setFocus();
                   QTest::keyClick(front()->window(), Qt::Key_Escape);
               });
    user->then([&] { return frontIs("Missing Fonts"); },
               [&] {
                   seen.okDefault = inFront<QPushButton>("okButton")->isDefault();
                   seen.cancelDefault = inFront<QPushButton>("cancelButton")->isDefault();
                   seen.okFocused = inFront<QPushButton>("okButton")->hasFocus();
                   QTest::mouseClick(inFront<QPushButton>("cancelButton"), Qt::LeftButton);
               });
    ASSERT_TRUE(openAndPlay()) << "steps played: " << user->played();
    EXPECT_TRUE(seen.okDefault);
    EXPECT_FALSE(seen.cancelDefault);
    EXPECT_TRUE(seen.okFocused);
}

TEST_F(DialogManners, EveryButtonOfTheFontsDialogHasItsOwnAccessKeyAndWidgetsHaveNames) {
    std::vector<QString> captions;
    QString treeName;
    user->then([&] { return frontIs("Missing Fonts"); },
               [&] {
                   for (auto* button : front()->window()->findChildren<QPushButton*>())
                       captions.push_back(button->text());
                   treeName = inFront<QTreeView>("fontTree")->accessibleName();
                   QTest::mouseClick(inFront<QPushButton>("cancelButton"), Qt::LeftButton);
               });
    ASSERT_TRUE(openAndPlay());
    ASSERT_GE(captions.size(), 5u);
    std::set<QChar> keys;
    for (const QString& caption : captions) {
        const QChar key = Galley::AccessKeys::markedKey(caption);
        EXPECT_FALSE(key.isNull()) << caption.toStdString();
        EXPECT_TRUE(keys.insert(key).second) << "shared key in " << caption.toStdString();
    }
    EXPECT_EQ(treeName.toStdString(), "Font tree");
}

TEST(Screen, AWindowAskingForMoreThanTheScreenGetsWhatFitsWithRoomForItsFrame) {
    QWidget widget;
    const QSize available = widget.screen()->availableGeometry().size();
    EXPECT_EQ(Galley::fittedToScreen(widget, {300, 200}), QSize(300, 200));
    const QSize fitted = Galley::fittedToScreen(widget, available * 2);
    EXPECT_LT(fitted.width(), available.width());
    EXPECT_LT(fitted.height(), available.height());
    EXPECT_GT(fitted.width(), available.width() * 8 / 10);
}

TEST(Translations, TheEnglishCatalogueIsBuiltInUnderTheWindowsContext) {
    QTranslator english;
    ASSERT_TRUE(english.load(QLocale(QLocale::English), "galley", "_", ":/i18n"));
    EXPECT_EQ(english.translate("GuiText", "&Save").toStdString(), "&Save")
        << "lupdate's context and the one GuiText::tr asks for are the same";
    EXPECT_EQ(english.translate("GuiText", "Find Font").toStdString(), "Find Font");
}

struct KeyCase {
    std::vector<const char*> captions; // of one dialog's buttons, in order
    std::vector<const char*> shown;
};

TEST(AccessKeys, EachCaptionGetsAFreeLetterWordStartsFirstAndKeepsAMarkedOne) {
    const KeyCase cases[] = {
        {{"OK", "Cancel"}, {"&OK", "&Cancel"}},
        {{"Activate All", "Info", "Buy…", "Replace…"},
         {"&Activate All", "&Info", "&Buy…", "&Replace…"}},
        // A taken word start gives way to the next word's, then to any letter.
        {{"Open", "Other Options"}, {"&Open", "O&ther Options"}},
        {{"Info", "Buy Info"}, {"&Info", "&Buy Info"}},
        {{"Save", "Send", "Sss"}, {"&Save", "S&end", "Sss"}},
        // A marked key is kept and counts as taken.
        {{"&Cancel", "Copy"}, {"&Cancel", "C&opy"}},
        // A literal ampersand in a caption without a key.
        {{"Fonts & Styles"}, {"&Fonts && Styles"}},
    };
    for (const KeyCase& c : cases) {
        Galley::AccessKeys keys;
        for (std::size_t i = 0; i < c.captions.size(); ++i)
            EXPECT_EQ(keys.caption(&c.captions[i], c.captions[i]).toStdString(), c.shown[i]);
    }
}

TEST(AccessKeys, AButtonKeepsItsLetterWhenItsCaptionChanges) {
    Galley::AccessKeys keys;
    int activate = 0, info = 0;
    EXPECT_EQ(keys.caption(&activate, "Activate All").toStdString(), "&Activate All");
    EXPECT_EQ(keys.caption(&info, "All Info").toStdString(), "All &Info");
    EXPECT_EQ(keys.caption(&activate, "Make Active").toStdString(), "Make &Active");
}

} // namespace
