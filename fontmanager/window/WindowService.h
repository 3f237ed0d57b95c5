#pragma once

#include <QObject>
#include <QString>

namespace Vellumine::Window {

class MainWindow;

// The window's side of WindowBus.h: exported on the session bus under the window's own
// name, so that `vellumine serve` (for a show request) and a second `vellumine window
// --show` reach the window that runs.
class WindowService : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.vellumine.Window1")
public:
    explicit WindowService(MainWindow& window);

public slots:
    Q_SCRIPTABLE void Show(const QString& containerID, const QString& postScriptName);
    // The window's title, which names the face shown.
    Q_SCRIPTABLE QString Title() const;

private:
    MainWindow& window;
};

} // namespace Vellumine::Window
