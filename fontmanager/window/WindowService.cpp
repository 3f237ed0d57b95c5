#include "fontmanager/window/WindowService.h"

#include "fontmanager/ContainerID.h"
#include "fontmanager/window/MainWindow.h"

namespace Vellumine::Window {

WindowService::WindowService(MainWindow& window) : window(window) {}

void WindowService::Show(const QString& containerID, const QString& postScriptName) {
    const auto id = parseContainerID(containerID.toStdString());
    window.showFace(id.value_or(0), postScriptName);
}

QString WindowService::Title() const {
    return window.windowTitle();
}

} // namespace Vellumine::Window
