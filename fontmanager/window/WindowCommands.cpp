#include "fontmanager/window/WindowCommands.h"

#include "fontmanager/ContainerID.h"
#include "fontmanager/LibraryPaths.h"
#include "fontmanager/StoreUrl.h"
#include "fontmanager/WindowBus.h"
#include "fontmanager/window/MainWindow.h"
#include "fontmanager/window/WindowService.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusInterface>
#include <QDesktopServices>
#include <QUrl>

#include <cstdlib>

namespace Vellumine::Window {

namespace {

bool hasDisplay() {
    for (const char* name : {"WAYLAND_DISPLAY", "DISPLAY", "QT_QPA_PLATFORM"}) {
        const char* value = std::getenv(name);
        if (value != nullptr && *value != '\0') {
            return true;
        }
    }
    return false;
}

// Qt keeps references to argc and argv for the application's lifetime.
int qtArgc = 1;
char qtProgram[] = "vellumine";
char* qtArgv[] = {qtProgram, nullptr};

QString qtext(const std::string& value) {
    return QString::fromStdString(value);
}

} // namespace

int runWindow(const CliArguments& arguments, std::ostream& out, std::ostream& errors) {
    std::string postScriptName, container;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (arguments[i] == "--show" && i + 1 < arguments.size()) {
            postScriptName = arguments[++i];
        } else if (arguments[i] == "--container" && i + 1 < arguments.size() &&
                   parseContainerID(arguments[i + 1])) {
            container = arguments[++i];
        } else {
            errors << "vellumine window: usage: window [--show POSTSCRIPT-NAME] [--container ID]\n";
            return 2;
        }
    }
    if (!hasDisplay()) {
        errors << "vellumine window: no display (neither WAYLAND_DISPLAY nor DISPLAY is set); "
                  "the other commands work without one\n";
        return 1;
    }
    QApplication application(qtArgc, qtArgv);
    QApplication::setApplicationName(QStringLiteral("Vellumine"));
    QApplication::setDesktopFileName(QStringLiteral("org.vellumine.Vellumine"));
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (bus.isConnected() && !bus.registerService(qtext(windowBusName))) {
        QDBusInterface running(qtext(windowBusName), qtext(windowObjectPath),
                               qtext(windowInterface), bus);
        running.call(QStringLiteral("Show"), qtext(container), qtext(postScriptName));
        out << "vellumine window: brought the window that runs to the front\n";
        return 0;
    }
    WindowModel model(LibraryPaths::fromEnvironment());
    MainWindow window(model);
    WindowService service(window);
    bus.registerObject(qtext(windowObjectPath), &service, QDBusConnection::ExportScriptableSlots);
    window.show();
    if (!postScriptName.empty() || !container.empty()) {
        window.showFace(parseContainerID(container).value_or(0), qtext(postScriptName));
    }
    return QApplication::exec();
}

int openUrl(const CliArguments& arguments, std::ostream&, std::ostream& errors) {
    if (arguments.size() != 1 || !isWebAddress(arguments[0])) {
        errors << "vellumine open-url: usage: open-url URL (an http or https address)\n";
        return 2;
    }
    if (!hasDisplay()) {
        errors << "vellumine open-url: no display to open a browser on\n";
        return 1;
    }
    QGuiApplication application(qtArgc, qtArgv);
    if (!QDesktopServices::openUrl(QUrl(qtext(arguments[0]), QUrl::StrictMode))) {
        errors << "vellumine open-url: the desktop could not open " << arguments[0]
               << " (neither xdg-open nor $BROWSER names a browser)\n";
        return 1;
    }
    return 0;
}

} // namespace Vellumine::Window
