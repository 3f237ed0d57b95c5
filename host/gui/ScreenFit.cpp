#include "host/gui/ScreenFit.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

#include <algorithm>

namespace Galley {

QSize fittedToScreen(const QWidget& widget, QSize wanted) {
    const QScreen* screen = widget.screen() ? widget.screen() : QGuiApplication::primaryScreen();
    if (!screen)
        return wanted;
    // Room for the frame and title bar the window manager adds.
    const QSize room = screen->availableGeometry().size() * 0.92;
    return {std::min(wanted.width(), room.width()), std::min(wanted.height(), room.height())};
}

} // namespace Galley
