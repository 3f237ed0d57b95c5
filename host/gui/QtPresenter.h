#pragma once

#include "host/runtime/Presenter.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

class QWidget;

namespace Galley {

class MainLoop;
class QtDialogView;

// The GUI's view of the runtime: each open dialog as a modal window, alerts as message
// boxes, the host's messages and document changes handed to the main window.
class QtPresenter : public Presenter {
public:
    QtPresenter();
    ~QtPresenter() override;
    // The loop that input is posted to and the window dialogs belong to; set before any
    // dialog opens.
    void attach(MainLoop& loop, QWidget* parent) {
        loop_ = &loop;
        parent_ = parent;
    }

    // Lines of status said before there is anywhere to show them wait for this.
    void setOnStatus(std::function<void(const std::string&)> show);
    std::function<void(IdmlDocument&)> onDocumentChanged;
    std::function<void(Dialog&)> onDialogOpened;
    std::function<void()> onDialogClosed;

    QtDialogView* viewOf(const Dialog& dialog) const;
    // The dialog window in front (the one opened last), or null.
    QtDialogView* frontView() const;

    void dialogOpened(Dialog& dialog) override;
    void dialogChanged(Dialog& dialog, Widget& widget) override;
    void dialogClosed(Dialog& dialog) override;
    int16 alert(IAlertPresenter::Kind kind, const std::string& message,
                const std::string buttons[3], int16 defaultButton) override;
    void status(const std::string& message) override;
    // Shown once the action under way has put up its own status line.
    void notice(const std::string& message) override;
    void documentChanged(IdmlDocument& document) override;

private:
    // After a dialog closed, the keyboard goes back to the window in front of the rest.
    void giveFocusBack();

    MainLoop* loop_ = nullptr;
    QWidget* parent_ = nullptr;
    std::map<const Dialog*, std::unique_ptr<QtDialogView>> views_;
    std::vector<const Dialog*> opened_; // oldest first
    std::function<void(const std::string&)> onStatus_;
    std::vector<std::string> pendingStatus_;
};

} // namespace Galley
