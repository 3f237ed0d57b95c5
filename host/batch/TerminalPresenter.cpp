#include "host/batch/TerminalPresenter.h"

#include "host/dialogs/Dialog.h"
#include "host/dialogs/DialogText.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdlib>

namespace Galley {

namespace {

// The progress of a dialog: its first label's text and its bar.
std::string progressLine(Dialog& dialog) {
    std::string text;
    std::string bar;
    dialog.root().forEach([&](Widget& widget) {
        if (widget.kind() == Widget::Kind::label && text.empty())
            text = widget.displayText();
        if (widget.kind() == Widget::Kind::progressBar && bar.empty())
            bar = renderProgressBar(widget);
    });
    return bar.empty() ? std::string() : text + "  " + bar;
}

} // namespace

TerminalPresenter::TerminalPresenter(std::ostream& out, std::ostream& err, bool outIsTerminal,
                                     std::size_t width)
    : out_(out), err_(err), terminal_(outIsTerminal), width_(width) {}

std::size_t TerminalPresenter::terminalWidth(int fd) {
    winsize size{};
    if (::isatty(fd) == 1 && ::ioctl(fd, TIOCGWINSZ, &size) == 0 && size.ws_col > 0)
        return size.ws_col;
    const char* columns = std::getenv("COLUMNS");
    const long fromEnvironment = columns ? std::strtol(columns, nullptr, 10) : 0;
    return fromEnvironment > 0 ? static_cast<std::size_t>(fromEnvironment) : 0;
}

void TerminalPresenter::endProgressLine() {
    if (progressLineOpen_) {
        out_ << '\n';
        progressLineOpen_ = false;
    }
}

void TerminalPresenter::show(Dialog& dialog) {
    endProgressLine();
    for (const auto& line : renderDialog(dialog, width_))
        out_ << line << '\n';
    out_.flush();
    lastProgress_ = progressLine(dialog);
}

void TerminalPresenter::dialogOpened(Dialog& dialog) {
    show(dialog);
}

void TerminalPresenter::dialogChanged(Dialog& dialog, Widget& widget) {
    if (widget.kind() != Widget::Kind::progressBar && widget.kind() != Widget::Kind::label)
        return; // the rest is shown after the next action
    const std::string line = progressLine(dialog);
    if (line.empty() || line == lastProgress_)
        return;
    lastProgress_ = line;
    if (terminal_) {
        // Kept shorter than the terminal: a wrapped line could not be redrawn in place.
        out_ << "\r\033[K" << fitToWidth(line, width_ > 0 ? width_ - 1 : 0);
        progressLineOpen_ = true;
    } else {
        out_ << line << '\n';
    }
    out_.flush();
}

void TerminalPresenter::dialogClosed(Dialog& dialog) {
    endProgressLine();
    out_ << "== "
         << (dialog.title().empty() ? "dialog" : dialog.displayText(PMString(dialog.title())))
         << (dialog.wasCancelled() ? " (cancelled)" : " (closed)") << " ==\n";
    out_.flush();
}

int16 TerminalPresenter::alert(IAlertPresenter::Kind, const std::string& message,
                               const std::string buttons[3], int16 defaultButton) {
    endProgressLine();
    ++alerts_;
    err_ << (documentName_.empty() ? "galley" : documentName_) << ": " << message;
    const int index = defaultButton >= 1 && defaultButton <= 3 ? defaultButton - 1 : 0;
    if (!buttons[index].empty())
        err_ << " [" << buttons[index] << "]";
    err_ << '\n';
    err_.flush();
    return defaultButton;
}

void TerminalPresenter::status(const std::string& message) {
    endProgressLine();
    err_ << "galley: " << message << '\n';
    err_.flush();
}

} // namespace Galley
