#pragma once

#include "plugin/TestPlugin.h"

#include "host/dialogs/Dialog.h"
#include "host/document/IdmlDocument.h"
#include "host/loop/SdEventLoop.h"
#include "host/runtime/Runtime.h"
#include "host/session/GalleySession.h"
#include "sdk/HostIdentifiers.h"
#include "tests/support/ListedFaces.h"

#include <gtest/gtest.h>

#include <dlfcn.h>

#include <algorithm>
#include <string>
#include <vector>

namespace RuntimeTest {

// Records what the runtime shows; alerts answer with their default button.
struct RecordingPresenter : Galley::Presenter {
    std::vector<std::string> lines;
    void dialogOpened(Galley::Dialog& dialog) override {
        lines.push_back("opened " + dialog.title());
    }
    void dialogClosed(Galley::Dialog& dialog) override {
        lines.push_back("closed " + dialog.title());
    }
    int16 alert(IAlertPresenter::Kind, const std::string& message, const std::string[3],
                int16 defaultButton) override {
        lines.push_back("alert " + message);
        return defaultButton;
    }
    void status(const std::string& message) override { lines.push_back("status " + message); }
    bool has(const std::string& part) const {
        return std::any_of(lines.begin(), lines.end(), [&](const std::string& line) {
            return line.find(part) != std::string::npos;
        });
    }
};

// A runtime with the test plug-in loaded, on a fresh loop (sd-event's or Qt's) and session.
template <typename Loop>
class RuntimeFixtureOn : public ::testing::Test {
protected:
    explicit RuntimeFixtureOn(Galley::Runtime::Options options = {}) { start(options); }
    void start(Galley::Runtime::Options options) {
        options.fontFolders = Galley::FolderWatching::off;
        runtime.reset();
        runtime = std::make_unique<Galley::Runtime>(loop, session, presenter, options);
    }
    void SetUp() override {
        runtime->plugins().load({TEST_PLUGIN});
        void* handle = dlopen(TEST_PLUGIN, RTLD_NOW | RTLD_NOLOAD);
        ASSERT_NE(handle, nullptr);
        probe = reinterpret_cast<TestPluginProbe* (*)()>(dlsym(handle, "GalleyTestPluginProbe"))();
        *probe = TestPluginProbe{};
    }
    bool saw(const std::string& event) const {
        return std::find(probe->events.begin(), probe->events.end(), event) != probe->events.end();
    }
    // Turns the loop until `event` was recorded or a second passed.
    bool runUntilEvent(const std::string& event) {
        return runtime->loop().runUntil([&] { return saw(event); },
                                        std::chrono::steady_clock::now() + std::chrono::seconds(1));
    }
    Galley::Dialog* openTestDialog() {
        auto* dialog = runtime->dialogs().CreateNewDialog(
            RsrcSpec(PMLocaleId{}, kTestPluginPrefix, kViewRsrcType, kTestDialogRsrc),
            IDialog::kMovableModal);
        if (dialog)
            dialog->Open();
        return static_cast<Galley::Dialog*>(dialog);
    }

    Loop loop;
    VLMTest::ListedFaces faces; // none: the runtime tests are about the runtime, not fonts
    Galley::GalleySession session{faces};
    RecordingPresenter presenter;
    std::unique_ptr<Galley::Runtime> runtime;
    TestPluginProbe* probe = nullptr;
};

using RuntimeFixture = RuntimeFixtureOn<Galley::SdEventLoop>;

} // namespace RuntimeTest
