#include "host/gui/GuiApplication.h"

#include "host/gui/MainWindow.h"
#include "host/gui/QtEventLoop.h"
#include "host/gui/QtPresenter.h"
#include "host/runtime/HostProcess.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QIcon>
#include <QLocale>
#include <QTranslator>
#include <QWindow>

#include <cstdlib>

namespace Galley {

bool guiAvailable() {
    for (const char* variable : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        if (const char* value = std::getenv(variable); value && *value)
            return true;
    return false;
}

void setUpApplication(QApplication& application, QTranslator& translator) {
    QApplication::setApplicationName("Galley");
    QApplication::setOrganizationName("Galley");
    QApplication::setApplicationVersion(GALLEY_VERSION);
    QApplication::setDesktopFileName("org.galley.Galley");
    // The theme's icon when Galley is installed; the built-in one otherwise.
    QApplication::setWindowIcon(
        QIcon::fromTheme("org.galley.Galley", QIcon(":/galley/org.galley.Galley.png")));
    // galley_LANG.qm for the user's languages, built into the executable; English texts stay
    // when none matches.
    if (translator.load(QLocale(), "galley", "_", ":/i18n"))
        application.installTranslator(&translator);
}

namespace {

// Dialogs are centred over the window: it must be where the window manager put it first.
// Bounded, for a window manager that never maps it.
void waitUntilPlaced(QWidget& window) {
    QElapsedTimer waited;
    waited.start();
    while (!(window.windowHandle() && window.windowHandle()->isExposed()) &&
           waited.elapsed() < 2000)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
}

} // namespace

int runGui(int argc, char** argv, const std::string& document, const std::string& executable) {
    QApplication application(argc, argv);
    QTranslator translator;
    setUpApplication(application, translator);
    QtPresenter presenter;
    HostProcess process(presenter);
    QtEventLoop events;
    auto started = process.startRuntime(events, presenter, {}, executable);
    Runtime& runtime = *started;

    MainWindow window(runtime, presenter);
    presenter.setOnStatus(
        [&](const std::string& text) { window.showStatus(QString::fromStdString(text)); });
    window.show();
    waitUntilPlaced(window);
    if (!document.empty())
        window.openLater(QString::fromStdString(document));
    runtime.loop().runUntil([&] { return window.closed(); }, std::nullopt);
    runtime.shutdown();
    return 0;
}

} // namespace Galley
