#pragma once

#include "host/runtime/Presenter.h"

#include <ostream>
#include <string>

namespace Galley {

// Batch mode's view: dialogs printed as text on standard output when they open and after
// each action, the progress line updated in place on a terminal (a new line per change
// otherwise), alerts on standard error prefixed with the document's name and answered with
// their default button, and the host's own messages on standard error.
class TerminalPresenter : public Presenter {
public:
    // `width`: the terminal's columns, which every line of a dialog fits (0: any length).
    TerminalPresenter(std::ostream& out, std::ostream& err, bool outIsTerminal,
                      std::size_t width = 0);
    // The columns of the terminal on `fd`, else $COLUMNS when set, else 0.
    static std::size_t terminalWidth(int fd);

    void setDocumentName(const std::string& name) { documentName_ = name; }
    // Prints the dialog as it is now (after an action changed it).
    void show(Dialog& dialog);
    int alerts() const { return alerts_; }

    void dialogOpened(Dialog& dialog) override;
    void dialogChanged(Dialog& dialog, Widget& widget) override;
    void dialogClosed(Dialog& dialog) override;
    int16 alert(IAlertPresenter::Kind kind, const std::string& message,
                const std::string buttons[3], int16 defaultButton) override;
    // A line of Galley's own on standard error ("galley: …"), on a line of its own even while
    // a progress line is open.
    void status(const std::string& message) override;

private:
    void endProgressLine();

    std::ostream& out_;
    std::ostream& err_;
    bool terminal_;
    std::size_t width_;
    std::string documentName_;
    std::string lastProgress_;
    bool progressLineOpen_ = false;
    int alerts_ = 0;
};

} // namespace Galley
