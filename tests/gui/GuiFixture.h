// Galley's window on Qt's offscreen platform, with the real plug-in or without one. The
// font manager is a stand-in on the platform fakes; the installed fonts are a list the tests
// change; the user's answers to the window's questions come from a script.
#pragma once

#include "host/dialogs/Dialog.h"
#include "host/document/IdmlDocument.h"
#include "host/gui/DocumentPrompts.h"
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

#include <QDialog>
#include <QTextBlock>

#include <deque>
#include <functional>

namespace GuiTest {

using namespace std::chrono_literals;

// The user's answers to the window's questions, in order; what was asked is kept.
class ScriptedPrompts : public Galley::DocumentPrompts {
public:
    std::deque<Answer> answers;
    QString toOpen;
    QString saveTarget;
    QStringList askedAbout;
    QStringList errors;

    Answer askToSave(const QString& name) override {
        askedAbout << name;
        if (answers.empty())
            return Answer::cancel;
        const Answer answer = answers.front();
        answers.pop_front();
        return answer;
    }
    QString chooseDocumentToOpen() override { return toOpen; }
    QString chooseSaveTarget(const QString&) override { return saveTarget; }
    void showError(const QString& text) override { errors << text; }
};

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
    void SetUp() override { start(true); }
    void start(bool withPlugin) {
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
        if (withPlugin)
            runtime->plugins().load({VELLUMINE_LINK_PLUGIN});
        window = std::make_unique<Galley::MainWindow>(*runtime, presenter, &prompts);
        user = std::make_unique<User>(runtime->loop());
    }
    void TearDown() override {
        user.reset();
        runtime->shutdown();
        window.reset();
    }

    // Opens the sample and turns the loop until the user's steps are done and no dialog is
    // open (bounded).
    bool openAndPlay(const QString& path = SAMPLE_DOCUMENT) {
        window->openLater(path);
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
    ScriptedPrompts prompts;
    std::unique_ptr<Galley::Runtime> runtime;
    std::unique_ptr<Galley::MainWindow> window;
    std::unique_ptr<User> user;
};

} // namespace GuiTest
