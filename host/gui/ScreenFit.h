#pragma once

#include <QSize>

class QWidget;

namespace Galley {

// `wanted`, or less where the screen that `widget` is on (or will be shown on) is smaller:
// a window keeps a margin of the available area, so that it fits a small screen or a large
// scale factor (1280×800 at 2 leaves 640×400) with its frame and the desktop's panels.
QSize fittedToScreen(const QWidget& widget, QSize wanted);

} // namespace Galley
