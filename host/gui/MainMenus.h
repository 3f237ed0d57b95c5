#pragma once

#include <functional>

class QAction;
class QMainWindow;
class QMenu;
class QMenuBar;

namespace Galley {

// The main window's menus and their shortcuts (the desktop's standard keys where there
// are some): File, Type, then whatever `addMiddleMenus` adds (the plug-ins' menus), then
// Help.
struct MainMenus {
    QAction* open = nullptr;
    QMenu* recent = nullptr;
    QAction* save = nullptr;
    QAction* saveAs = nullptr;
    QAction* close = nullptr;
    QAction* quit = nullptr;
    QAction* findFont = nullptr;
    QAction* about = nullptr;

    static MainMenus create(QMainWindow& window,
                            const std::function<void(QMenuBar&)>& addMiddleMenus);
};

} // namespace Galley
