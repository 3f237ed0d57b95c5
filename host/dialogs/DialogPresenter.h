#pragma once

namespace Galley {

class Dialog;
class Widget;

// Whoever shows dialogs (the terminal, the GUI's windows, a recorder in tests) hears of every
// dialog that opens, changes and closes.
class DialogPresenter {
public:
    virtual ~DialogPresenter() = default;
    virtual void dialogOpened(Dialog&) {}
    virtual void dialogChanged(Dialog&, Widget&) {}
    virtual void dialogClosed(Dialog&) {}
};

} // namespace Galley
