#include "host/gui/MainMenus.h"

#include "host/gui/GuiText.h"

#include <QMainWindow>
#include <QMenuBar>

namespace Galley {

MainMenus MainMenus::create(QMainWindow& window,
                            const std::function<void(QMenuBar&)>& addMiddleMenus) {
    MainMenus menus;
    QMenuBar& bar = *window.menuBar();
    QMenu* file = bar.addMenu(GuiText::tr("&File"));
    menus.open = file->addAction(GuiText::tr("&Open…"));
    menus.open->setShortcut(QKeySequence::Open);
    menus.recent = file->addMenu(GuiText::tr("Open &Recent"));
    file->addSeparator();
    menus.save = file->addAction(GuiText::tr("&Save"));
    menus.save->setShortcut(QKeySequence::Save);
    menus.saveAs = file->addAction(GuiText::tr("Save &As…"));
    // Qt has no standard Save As key on some desktops; Ctrl+Shift+S is the convention.
    menus.saveAs->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_S));
    file->addSeparator();
    menus.close = file->addAction(GuiText::tr("&Close"));
    menus.close->setShortcut(QKeySequence::Close);
    menus.quit = file->addAction(GuiText::tr("&Quit"));
    menus.quit->setShortcut(QKeySequence::Quit);
    menus.quit->setMenuRole(QAction::QuitRole);

    QMenu* type = bar.addMenu(GuiText::tr("&Type"));
    menus.findFont = type->addAction(GuiText::tr("&Find Font…"));

    if (addMiddleMenus)
        addMiddleMenus(bar);

    QMenu* help = bar.addMenu(GuiText::tr("&Help"));
    menus.about = help->addAction(GuiText::tr("&About Galley"));
    menus.about->setMenuRole(QAction::AboutRole);
    return menus;
}

} // namespace Galley
