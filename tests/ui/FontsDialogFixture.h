#pragma once

#include "document/IDFontSuite.h"
#include "host/dialogs/Dialog.h"
#include "host/loop/SdEventLoop.h"
#include "host/runtime/Runtime.h"
#include "host/session/GalleySession.h"
#include "link/NotifiyHandlerFactory.h"
#include "link/VLMNotifyHandler.h"
#include "resources/VellumineIDs.h"
#include "sdk/HostIdentifiers.h"
#include "support/FakePlatform.h"
#include "tests/support/ListedFaces.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace UiTest {

// A font record in the state a font request's reply leaves it: typeMatchingCount,
// hasTypeMatching, isTypeMatchingActive, stateFlag4 (the document has it), stateFlag1.
struct Shape {
    unsigned candidates = 0;
    bool suppliable = false, activeInManager = false, used = false, replaced = false;
};

inline Tamrik::SmartPointer<VLMFontInfo> record(const std::string& name, Shape shape,
                                                const std::vector<std::string>& containers = {}) {
    Tamrik::SmartPointer<VLMFontInfo> font(new VLMFontInfo());
    font->font.syncID = "1-" + name;
    font->font.psName = font->hostFontName = name;
    font->font.typeMatchingCount = shape.candidates;
    font->hasTypeMatching = shape.suppliable;
    font->font.isTypeMatchingActive = shape.activeInManager;
    font->stateFlag4 = font->stateFlag3 = shape.used;
    font->stateFlag1 = shape.replaced;
    for (const auto& container : containers)
        font->font.fontInfo.push_back({container, name + " from " + container});
    return font;
}

// Each text between `open` and the next `close` in `text`.
inline std::vector<std::string> between(const std::string& text, const std::string& open,
                                        const std::string& close) {
    std::vector<std::string> found;
    for (auto at = text.find(open); at != std::string::npos; at = text.find(open, at + 1)) {
        const auto start = at + open.size();
        found.push_back(text.substr(start, text.find(close, start) - start));
    }
    return found;
}

// Installed faces for the replacement list. Beta Regular calls itself "Beta Book": it is still
// found, and listed, by family and style.
inline VLMTest::ListedFaces replacementFaces() {
    VLMTest::ListedFaces faces;
    faces.add("Alpha-Regular", "Alpha", "Regular", IPMFont::kUnknownFontType);
    faces.add("Alpha-Bold", "Alpha", "Bold", IPMFont::kUnknownFontType);
    faces.add("Beta-Regular", "Beta", "Regular", IPMFont::kUnknownFontType);
    faces.faces.back().fullName = "Beta Book";
    return faces;
}

// The runtime with the fonts dialogs registered, over fake platform services whose font
// manager runs and answers every request; each test starts with a fresh font suite.
class FontsDialogTest : public ::testing::Test {
protected:
    FontsDialogTest() {
        platform.runningApplications.add("VLMQ", "org.vellumine.Vellumine", 11);
        platform.appEvents.setResponder([](const Platform::AppEvent&) {
            return VLMTest::FakeAppEvents::Answer{
                0, "<cmd>reply</cmd>\n<protocolVersion>2.0</protocolVersion>\n</cmd>\n"};
        });
        Galley::Runtime::Options options;
        options.fontFolders = Galley::FolderWatching::off;
        options.deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        runtime = std::make_unique<Galley::Runtime>(loop, session, presenter, options);
        runtime->plugins().load({UI_TEST_PLUGIN});
        suite = VLM::IDFontSuite::getFontSuite(true);
    }
    ~FontsDialogTest() override { runtime->shutdown(); }

    Galley::Dialog& open(RsrcID resource) {
        IDialog* dialog = runtime->dialogs().CreateNewDialog(
            RsrcSpec(PMLocaleId{}, kVelluminePrefix, kViewRsrcType, resource),
            IDialog::kMovableModal);
        EXPECT_NE(dialog, nullptr);
        dialog->Open();
        return *static_cast<Galley::Dialog*>(dialog);
    }
    static Galley::Widget& widget(Galley::Dialog& dialog, WidgetID id) {
        auto* found = static_cast<Galley::Widget*>(dialog.root().FindWidget(id, 9999));
        if (!found)
            throw std::runtime_error("no widget " + std::to_string(id));
        return *found;
    }
    static void notify() {
        VLM::NotifiyHandlerFactory::getNotifyHandler(false)->notifiyAll(
            "<cmd cmd=\"fontChanged\"/>");
    }

    // Every request of `command` sent to the font manager, each as the values of `element`.
    std::vector<std::vector<std::string>> requests(const std::string& command,
                                                   const std::string& element) const {
        std::vector<std::vector<std::string>> found;
        for (const auto& sent : platform.appEvents.sent())
            if (sent.event.text.find("<cmd>" + command + "</cmd>") != std::string::npos)
                found.push_back(
                    between(sent.event.text, "<" + element + ">", "</" + element + ">"));
        return found;
    }
    struct Presenter : Galley::Presenter {
        std::vector<std::string> closed;
        void dialogClosed(Galley::Dialog& dialog) override { closed.push_back(dialog.title()); }
        int16 alert(IAlertPresenter::Kind, const std::string&, const std::string[3],
                    int16 button) override {
            return button;
        }
    };

    VLMTest::FakePlatform platform;
    Galley::SdEventLoop loop;
    VLMTest::ListedFaces faces = replacementFaces();
    Galley::GalleySession session{faces};
    Presenter presenter;
    std::unique_ptr<Galley::Runtime> runtime;
    VLM::IDFontSuite* suite = nullptr;
};

} // namespace UiTest
