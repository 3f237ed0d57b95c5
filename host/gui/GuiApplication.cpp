#include "host/gui/GuiApplication.h"

#include "host/gui/MainWindow.h"
#include "host/gui/QtEventLoop.h"
#include "host/gui/QtPresenter.h"
#include "host/runtime/HostProcess.h"

#include <QApplication>

#include <cstdlib>

namespace Galley {

bool guiAvailable() {
    for (const char* variable : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        if (const char* value = std::getenv(variable); value && *value)
            return true;
    return false;
}

int runGui(int argc, char** argv, const std::string& document, const std::string& executable) {
    QApplication application(argc, argv);
    QApplication::setApplicationName("Galley");
    QtPresenter presenter;
    HostProcess process(presenter);
    QtEventLoop events;
    auto started = process.startRuntime(events, presenter, {}, executable);
    Runtime& runtime = *started;

    MainWindow window(runtime);
    presenter.attach(runtime.loop(), &window);
    presenter.setOnStatus(
        [&](const std::string& text) { window.showStatus(QString::fromStdString(text)); });
    presenter.onDocumentChanged = [&](IdmlDocument&) { window.refreshDocument(); };
    presenter.onDialogClosed = [&] { runtime.loop().post([&] { window.refreshDocument(); }); };
    window.show();
    window.refreshDocument();
    if (!document.empty())
        window.openLater(QString::fromStdString(document));
    runtime.loop().runUntil([&] { return window.closed(); }, std::nullopt);
    runtime.shutdown();
    return 0;
}

} // namespace Galley
