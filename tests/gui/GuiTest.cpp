// Galley's window with the real plug-in, on Qt's offscreen platform. The font manager is a
// stand-in on the platform fakes; the installed fonts are a list the tests change.
#include "GuiFixture.h"

#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QTest>
#include <QTreeView>

namespace {

using GuiTest::Gui;
using namespace std::chrono_literals;

TEST_F(Gui, ProgressDialogClosesItselfWhenTheFontArrivesAndTheHighlightGoes) {
    // The font manager activates the font as it answers the request, as vellumine does.
    vellumine.holdings["TeXGyreHeros-Bold"] = {1, true, {"11"}};
    platform.appEvents.setResponder([this](const Platform::AppEvent& event) {
        if (event.text.rfind("<cmd>fontRequest</cmd>", 0) == 0 && faces.faces.size() == 4)
            faces.add("TeXGyreHeros-Bold", "TeX Gyre Heros", "Bold", IPMFont::kOpenTypeCFF);
        return vellumine.answer(event.text);
    });
    std::vector<std::string> shown;
    int pinkBefore = -1;
    QColor half, rest;
    presenter.onDialogOpened = [&](Galley::Dialog& dialog) {
        shown.push_back(dialog.title());
        pinkBefore = pinkRuns();
        // The bar is drawn by the plug-in's view: filled in proportion to its value.
        Galley::Widget* bar = dialog.root().findByName("progressBar");
        bar->SetRange(0, 4);
        bar->SetValue(2);
        const QImage image = presenter.viewOf(dialog)->qtWidgetFor(*bar)->grab().toImage();
        half = image.pixelColor(image.width() / 4, image.height() / 2);
        rest = image.pixelColor(image.width() * 3 / 4, image.height() / 2);
    };
    const auto start = std::chrono::steady_clock::now();
    ASSERT_TRUE(openAndPlay());
    EXPECT_LT(std::chrono::steady_clock::now() - start, 2s) << "no wait for the refresh period";
    EXPECT_EQ(shown, std::vector<std::string>{"0x11f300kWaitingDialogTitleKey"});
    EXPECT_EQ(pinkBefore, 1) << "the heading's run, while the font was on its way";
    EXPECT_EQ(half, QColor::fromRgbF(0.2f, 0.6f, 0.4f));
    EXPECT_NE(rest, half);
    EXPECT_EQ(pinkRuns(), 0);
    EXPECT_EQ(runtime->documents().front()->usage().GetMissingFontCount(), 0);
}

TEST_F(Gui, MainDialogRowsShowStatusInColourAndButtonsFollowTheSelection) {
    vellumine.holdings["TeXGyreHeros-Bold"] = {2, false, {"11", "12"}};
    vellumine.showWindow = true;
    std::vector<QString> status;
    QColor colour;
    bool buyBefore = true, buyAfter = false;
    QString captionBefore, captionAfter;
    user->then([&] { return frontIs("Missing Fonts"); },
               [&] {
                   auto* tree = inFront<QTreeView>("fontTree");
                   QAbstractItemModel* rows = tree->model();
                   const QModelIndex font = rows->index(0, 0);
                   for (int c = 0; c < rows->columnCount(); ++c)
                       status.push_back(rows->index(0, c).data().toString());
                   colour = rows->index(0, rows->columnCount() - 1)
                                .data(Qt::ForegroundRole)
                                .value<QBrush>()
                                .color();
                   captionBefore = inFront<QPushButton>("activateButton")->text();
                   buyBefore = inFront<QPushButton>("buyButton")->isEnabled();
                   EXPECT_EQ(rows->rowCount(font), 2) << "one row per candidate";
                   tree->selectionModel()->select(font, QItemSelectionModel::Select |
                                                            QItemSelectionModel::Rows);
               });
    user->then([&] { return front() && inFront<QPushButton>("buyButton")->isEnabled(); },
               [&] {
                   buyAfter = true;
                   captionAfter = inFront<QPushButton>("activateButton")->text();
                   QTest::mouseClick(inFront<QPushButton>("cancelButton"), Qt::LeftButton);
               });
    ASSERT_TRUE(openAndPlay());
    ASSERT_GE(status.size(), 4u);
    EXPECT_EQ(status.back().toStdString(), "Several matches");
    EXPECT_NEAR(colour.redF(), 0.98, 0.01);
    EXPECT_NEAR(colour.greenF(), 0.56, 0.01);
    // Shown with an access key each.
    EXPECT_EQ(captionBefore.toStdString(), "&Activate All");
    EXPECT_FALSE(buyBefore);
    EXPECT_TRUE(buyAfter);
    EXPECT_EQ(captionAfter.toStdString(), "&Activate") << "the same key as before";
}

TEST_F(Gui, ADoubleClickInTheReplacementDialogChoosesTheFontAndOKReplacesIt) {
    vellumine.showWindow = true; // the font manager holds nothing of the missing font
    user->then([&] { return frontIs("Missing Fonts"); },
               [&] {
                   auto* tree = inFront<QTreeView>("fontTree");
                   tree->selectionModel()->select(tree->model()->index(0, 0),
                                                  QItemSelectionModel::Select |
                                                      QItemSelectionModel::Rows);
               });
    user->then(
        [&] {
            return frontIs("Missing Fonts") && inFront<QPushButton>("replaceButton")->isEnabled();
        },
        [&] { QTest::mouseClick(inFront<QPushButton>("replaceButton"), Qt::LeftButton); });
    user->then(
        [&] { return frontIs("Replace Font") && inFront<QListWidget>("fontList")->count() > 0; },
        [&] {
            auto* list = inFront<QListWidget>("fontList");
            const auto items = list->findItems("DejaVu Sans Book", Qt::MatchExactly);
            ASSERT_FALSE(items.isEmpty());
            emit list->itemDoubleClicked(items.front());
        });
    user->then([&] { return frontIs("Missing Fonts"); },
               [&] { QTest::mouseClick(inFront<QPushButton>("okButton"), Qt::LeftButton); });
    EXPECT_EQ(pinkRuns(), 0) << "nothing open yet";
    ASSERT_TRUE(openAndPlay()) << "steps played: " << user->played();
    EXPECT_EQ(pinkRuns(), 0);
    EXPECT_TRUE(runtime->documents().front()->IsModified());
    EXPECT_TRUE(window->isWindowModified()) << "the title marks the replacement";
}

} // namespace
