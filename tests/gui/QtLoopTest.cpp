// The runtime's loop scenarios on Qt's event loop, as the window runs them.
#include "LoopScenarios.h"

#include "host/gui/QtEventLoop.h"

#include "host/gui/GuiApplication.h"

#include <QApplication>
#include <QStandardPaths>
#include <QTranslator>

namespace RuntimeTest {

INSTANTIATE_TYPED_TEST_SUITE_P(Qt, LoopScenarios, ::testing::Types<Galley::QtEventLoop>);

} // namespace RuntimeTest

namespace {

// One application object for every test of the program, on the offscreen platform.
class OffscreenApplication : public ::testing::Environment {
public:
    void SetUp() override {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        static int argc = 1;
        static char name[] = "gui_tests";
        static char* argv[] = {name, nullptr};
        application = new QApplication(argc, argv);
        // Settings (the recent files) go to a folder of their own, never the user's.
        QStandardPaths::setTestModeEnabled(true);
        static QTranslator translator;
        Galley::setUpApplication(*application, translator);
    }
    QApplication* application = nullptr;
};

[[maybe_unused]] auto* const environment =
    ::testing::AddGlobalTestEnvironment(new OffscreenApplication);

} // namespace

// Qt's font database keeps fontconfig's patterns until the process ends; under
// LeakSanitizer that is no leak of ours.
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libfontconfig.so\n";
}
