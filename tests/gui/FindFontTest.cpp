// Type ▸ Find Font…: the document's faces with their status and uses, Galley's own
// replacement from there, and everything that shows the document following it.
#include "GuiFixture.h"

#include "host/gui/AboutGalley.h"
#include "host/gui/FindFontWindow.h"
#include "host/gui/ReplaceFaceDialog.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTest>
#include <QTreeView>
#include <QTreeWidget>

namespace {

using GuiTest::Gui;
using namespace std::chrono_literals;

QStringList rowTexts(QTreeWidget& list, int row) {
    QStringList texts;
    for (int c = 0; c < list.columnCount(); ++c)
        texts << list.topLevelItem(row)->text(c);
    return texts;
}

class FindFont : public Gui {
protected:
    void SetUp() override {
        start(false);
        ASSERT_TRUE(window->documents().open(SAMPLE_DOCUMENT));
    }
};

TEST_F(FindFont, ListsEachFaceMissingFirstWithWhereItIsUsed) {
    QTreeWidget& list = window->showFindFont().list();
    ASSERT_EQ(list.topLevelItemCount(), 5);
    EXPECT_EQ(rowTexts(list, 0),
              (QStringList{"TeX Gyre Heros Bold", "Missing", "1 run of text; styles: Heading"}));
    for (int row = 1; row < 5; ++row)
        EXPECT_EQ(list.topLevelItem(row)->text(1), "Installed") << row;
}

TEST_F(FindFont, ReplacingAFaceInTextAndStylesMendsTheDocumentAndEverythingFollows) {
    Galley::FindFontWindow& findFont = window->showFindFont();
    ASSERT_EQ(pinkRuns(), 1);
    ASSERT_EQ(window->missingFontsText().toStdString(), "1 missing font");
    findFont.replace(0, {"DejaVu Sans", "Book"}, true);
    EXPECT_EQ(findFont.outcome().toStdString(),
              "Replaced TeX Gyre Heros Bold by DejaVu Sans Book in 1 run of text and 1 style.");
    EXPECT_TRUE(window->isWindowModified());
    EXPECT_EQ(window->windowTitle().toStdString(), "brochure.idml[*] — Galley");
    EXPECT_EQ(pinkRuns(), 0);
    EXPECT_EQ(window->missingFontsText().toStdString(), "All fonts installed");
    QTreeWidget& list = findFont.list();
    ASSERT_EQ(list.topLevelItemCount(), 4) << "the document no longer names the face";
    for (int row = 0; row < 4; ++row)
        EXPECT_NE(list.topLevelItem(row)->text(0), "TeX Gyre Heros Bold");
}

TEST_F(FindFont, ReplacingInTextAloneLeavesTheStylesThatNameTheFaceAndSaysSoWhenOnlyTheyDo) {
    Galley::FindFontWindow& findFont = window->showFindFont();
    findFont.replace(0, {"DejaVu Sans", "Book"}, false);
    EXPECT_EQ(pinkRuns(), 0);
    ASSERT_GE(findFont.list().topLevelItemCount(), 1);
    EXPECT_EQ(rowTexts(findFont.list(), 0),
              (QStringList{"TeX Gyre Heros Bold", "Missing", "styles: Heading"}));
    findFont.replace(0, {"DejaVu Sans", "Book"}, false);
    EXPECT_TRUE(findFont.outcome().startsWith("Nothing was replaced: only styles name it"))
        << findFont.outcome().toStdString();
}

using FindFontWithPlugIn = Gui;

TEST_F(FindFontWithPlugIn, ThePlugInsOpenFontsDialogFollowsAReplacement) {
    vellumine.showWindow = true;
    int rowsBefore = -1, rowsAfter = -1;
    user->then([&] { return frontIs("Missing Fonts"); },
               [&] {
                   rowsBefore = inFront<QTreeView>("fontTree")->model()->rowCount();
                   window->showFindFont().replace(0, {"DejaVu Sans", "Book"}, true);
                   rowsAfter = inFront<QTreeView>("fontTree")
                                   ? inFront<QTreeView>("fontTree")->model()->rowCount()
                                   : 0;
                   if (front())
                       QTest::mouseClick(inFront<QPushButton>("cancelButton"), Qt::LeftButton);
               });
    ASSERT_TRUE(openAndPlay()) << "steps played: " << user->played();
    EXPECT_EQ(rowsBefore, 1);
    EXPECT_EQ(rowsAfter, 0) << "the replaced font is no longer asked about";
    EXPECT_TRUE(window->isWindowModified());
}

TEST_F(FindFont, TheReplacementListIsSortedSearchableAndShowsEachFaceInItself) {
    Galley::ReplaceFaceDialog dialog(session.fonts(), "TeX Gyre Heros Bold", false, window.get());
    QListWidget& faces = dialog.faces();
    QStringList titles;
    for (int row = 0; row < faces.count(); ++row)
        titles << faces.item(row)->text();
    EXPECT_EQ(titles,
              (QStringList{"C059 Italic", "C059 Roman", "DejaVu Sans Book", "URW Gothic Book"}));
    EXPECT_EQ(faces.item(2)->font().family(), "DejaVu Sans");
    EXPECT_FALSE(dialog.chosenFace());
    dialog.search().setText("gothic bo");
    QTest::keyClick(&dialog.search(), Qt::Key_Down); // the keys stay in the search field
    EXPECT_EQ(faces.currentRow(), 3);
    for (int row = 0; row < 3; ++row)
        EXPECT_TRUE(faces.item(row)->isHidden()) << row;
    ASSERT_TRUE(dialog.chosenFace());
    EXPECT_EQ(dialog.chosenFace()->family, "URW Gothic");
    EXPECT_EQ(dialog.chosenFace()->style, "Book");
    EXPECT_EQ(dialog.findChild<QLabel*>("preview")->font().family(), "URW Gothic");
    dialog.search().setText("c059");
    ASSERT_TRUE(dialog.chosenFace()) << "the first face shown is chosen instead of a hidden one";
    EXPECT_EQ(dialog.chosenFace()->family, "C059");
    dialog.search().setText("nothing like it");
    EXPECT_FALSE(dialog.chosenFace());
    EXPECT_FALSE(dialog.alsoInStyles());
    EXPECT_TRUE(Galley::ReplaceFaceDialog(session.fonts(), "X", true, nullptr).alsoInStyles())
        << "a face named by styles alone is mended there";
}

TEST_F(FindFont, AboutNamesTheVersionAndTheLoadedPlugIns) {
    const QString none = Galley::aboutGalleyText(runtime->plugins());
    EXPECT_TRUE(none.contains("No plug-in is loaded.")) << none.toStdString();
    runtime->plugins().load({VELLUMINE_LINK_PLUGIN});
    const QString text = Galley::aboutGalleyText(runtime->plugins());
    EXPECT_TRUE(text.contains(QApplication::applicationVersion())) << text.toStdString();
    EXPECT_TRUE(text.contains(VELLUMINE_LINK_PLUGIN)) << text.toStdString();
}

} // namespace
