#include "host/gui/GuiApplication.h"

#include "host/fonts/FontconfigFontSystem.h"
#include "host/gui/MainWindow.h"
#include "host/gui/QtEventLoop.h"
#include "host/gui/QtPresenter.h"
#include "host/runtime/PluginLoader.h"
#include "host/runtime/Runtime.h"
#include "host/session/GalleySession.h"
#include "platform/Status.h"
#include "platform/linux/DefaultServices.h"

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
    int status = Platform::Status::ok;
    auto services = Platform::Linux::DefaultServices::install("org.galley.Galley", status);
    if (status == Platform::Status::permissionDenied) {
        services.reset();
        services = Platform::Linux::DefaultServices::install("", status);
    }
    FontconfigFontSystem fontSystem;
    GalleySession session(fontSystem);
    QtEventLoop events;
    QtPresenter presenter;
    Runtime::Options options;
    options.bus = services ? services->bus() : nullptr;
    Runtime runtime(events, session, presenter, options);
    runtime.loadPlugins(PluginLoader::defaultSearchPath(executable));

    MainWindow window(runtime);
    presenter.attach(runtime.loop(), &window);
    presenter.onStatus = [&](const std::string& text) {
        window.showStatus(QString::fromStdString(text));
    };
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
