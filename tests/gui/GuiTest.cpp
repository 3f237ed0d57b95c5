// Galley's window with the real plug-in, on Qt's offscreen platform. The font manager is a
// stand-in on the platform fakes; the installed fonts are a list the tests change.
#include "host/dialogs/Dialog.h"
#include "host/document/IdmlDocument.h"
#include "host/gui/DocumentView.h"
#include "host/gui/MainWindow.h"
#include "host/gui/QtDialogView.h"
#include "host/gui/QtEventLoop.h"
#include "host/gui/QtPresenter.h"
#include "host/runtime/Runtime.h"
#include "host/session/GalleySession.h"
#include "tests/support/FakePlatform.h"
#include "tests/support/FontManagerStandIn.h"
#include "tests/support/ListedFaces.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QTest>
#include <QTextBlock>
#include <QTreeView>

#include <functional>

namespace {

using namespace std::chrono_literals;

// A scripted user: each step waits for its condition, then acts once, from the main loop
// at whatever depth of modal waits it has reached.
class User {
public:
    explicit User(Galley::MainLoop& loop) : loop_(loop) {
        hook_ = loop_.addPrepareHook([this] { next(); });
    }
    ~User() { loop_.removePrepareHook(hook_); }
    void then(std::function<bool()> when, std::function<void()> act) {
        steps_.push_back({std::move(when), std::move(act)});
    }
    bool done() const { return ran_ == steps_.size(); }
    std::size_t played() const { return played_; }

private:
    void next() {
        if (played_ < steps_.size() && steps_[played_].first()) {
            auto act = steps_[played_++].second;
            loop_.post([this, act] {
                act();
                ++ran_;
            });
        }
    }
    Galley::MainLoop& loop_;
    int hook_ = 0;
    std::vector<std::pair<std::function<bool()>, std::function<void()>>> steps_;
    std::size_t played_ = 0;
    std::size_t ran_ = 0;
};

class Gui : public ::testing::Test {
protected:
    void SetUp() override {
        // Every font of the sample but TeX Gyre Heros Bold is installed; the font manager
        // reports the installed ones active and holds the missing one.
        faces.add("C059-Roman", "C059", "Roman", IPMFont::kType1);
        faces.add("C059-Italic", "C059", "Italic", IPMFont::kType1);
        faces.add("URWGothic-Book", "URW Gothic", "Book", IPMFont::kOpenTypeCFF);
        faces.add("DejaVuSans", "DejaVu Sans", "Book", IPMFont::kTrueType);
        session.GetFontMgr()->UpdateFontList();
        for (const char* ps : {"C059-Roman", "C059-Italic", "URWGothic-Book", "DejaVuSans"})
            vellumine.holdings[ps] = {1, true, {}};
        platform.runningApplications.add("VLMQ", "org.vellumine.Vellumine", 42);
        platform.appEvents.setResponder(
            [this](const Platform::AppEvent& event) { return vellumine.answer(event.text); });
        Galley::Runtime::Options options;
        options.deadline = std::chrono::steady_clock::now() + 10s; // no test waits for ever
        runtime = std::make_unique<Galley::Runtime>(events, session, presenter, options);
        runtime->plugins().load({VELLUMINE_LINK_PLUGIN});
        window = std::make_unique<Galley::MainWindow>(*runtime);
        presenter.attach(runtime->loop(), window.get());
        user = std::make_unique<User>(runtime->loop());
    }
    void TearDown() override {
        user.reset();
        runtime->shutdown();
        window.reset();
    }

    // Opens the sample and turns the loop until the user's steps are done and no dialog is
    // open (bounded).
    bool openAndPlay() {
        window->openLater(SAMPLE_DOCUMENT);
        return runtime->loop().runUntil(
            [&] {
                return user->done() && !runtime->dialogs().frontDialog() &&
                       runtime->documents().front();
            },
            std::chrono::steady_clock::now() + 10s);
    }
    Galley::QtDialogView* front() const {
        Galley::Dialog* dialog = runtime->dialogs().frontDialog();
        return dialog ? presenter.viewOf(*dialog) : nullptr;
    }
    template <typename T>
    T* inFront(const char* name) const {
        return front() ? front()->window()->template findChild<T*>(name) : nullptr;
    }
    bool frontIs(const char* title) const {
        return front() && front()->window()->windowTitle() == title;
    }
    int pinkRuns() {
        window->refreshDocument();
        int runs = 0;
        for (QTextBlock block = window->view().document()->begin(); block.isValid();
             block = block.next())
            for (auto it = block.begin(); !it.atEnd(); ++it)
                runs += it.fragment().charFormat().background().color() ==
                        Galley::DocumentView::missingFontBackground();
        return runs;
    }
    void fontArrives(const std::string& ps, const std::string& family, const std::string& style) {
        faces.add(ps, family, style, IPMFont::kOpenTypeCFF);
        vellumine.holdings[ps] = {1, true, {"11"}};
        runtime->documents().fontFoldersChanged();
    }

    VLMTest::FakePlatform platform;
    VLMTest::FontManagerStandIn vellumine;
    VLMTest::ListedFaces faces;
    Galley::GalleySession session{faces};
    Galley::QtEventLoop events;
    Galley::QtPresenter presenter;
    std::unique_ptr<Galley::Runtime> runtime;
    std::unique_ptr<Galley::MainWindow> window;
    std::unique_ptr<User> user;
};

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
    EXPECT_EQ(captionBefore.toStdString(), "Activate All");
    EXPECT_FALSE(buyBefore);
    EXPECT_TRUE(buyAfter);
    EXPECT_EQ(captionAfter.toStdString(), "Activate");
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
}

} // namespace
