#pragma once

#include "host/gui/AccessKeys.h"

#include <QObject>
#include <QPointer>

#include <functional>
#include <map>
#include <memory>
#include <vector>

class QDialog;
class QPushButton;
class QWidget;

namespace Galley {

class Dialog;
class MainLoop;
class TreeRowsModel;
class Widget;

// One of Galley's dialogs as a real window: the plug-in's description loaded with
// QUiLoader, each Qt widget bound by its name to the dialog's widget model. The model stays
// what the plug-in talks to; the window shows it and turns the user's input into the
// model's presses and selections, at the next turn of the main loop.
class QtDialogView : public QObject {
public:
    // Throws std::runtime_error when the description cannot be loaded into widgets. The
    // window belongs to `parent` (the main window or the dialog in front of it), shows
    // over its middle and stays above it.
    QtDialogView(Dialog& dialog, MainLoop& loop, QWidget* parent);
    ~QtDialogView() override;

    QDialog* window() const { return window_; }
    // The dialog's OK button, if it has one.
    QPushButton* okButton() const;
    // The window becomes active again (a dialog it opened has closed): OK is the default
    // button and has the focus, whatever had them before.
    void takeFocusBack();
    // Shows `widget`'s state again (all of them for null).
    void sync(Widget* widget = nullptr);
    QWidget* qtWidgetFor(const Widget& widget) const;

private:
    void bind(Widget& model, QWidget* view);
    void syncOne(Widget& model, QWidget* view);

    Dialog& dialog_;
    MainLoop& loop_;
    QPointer<QDialog> window_;
    std::map<Widget*, QWidget*> views_;
    std::vector<Widget*> bound_; // in the order of the description, for the access keys
    AccessKeys accessKeys_;
    std::map<Widget*, TreeRowsModel*> trees_;
    bool syncing_ = false;
};

} // namespace Galley
