#pragma once

#include "sdk/CAlert.h"

#include <string>

namespace Galley {

class Dialog;
class IdmlDocument;
class Widget;

// Whoever shows Galley's dialogs and alerts to the user: the terminal in batch mode, the
// windows of the GUI, a recorder in tests.
class Presenter {
public:
    virtual ~Presenter() = default;
    virtual void dialogOpened(Dialog&) {}
    virtual void dialogChanged(Dialog&, Widget&) {}
    virtual void dialogClosed(Dialog&) {}
    // Shows an alert (texts already translated) and answers with the number of the button
    // that closed it.
    virtual int16 alert(IAlertPresenter::Kind kind, const std::string& message,
                        const std::string buttons[3], int16 defaultButton) = 0;
    // A line for the user about what the host does (documents opened, plug-ins' failures).
    virtual void status(const std::string&) {}
    // The document's fonts were resolved again (fonts arrived, went or were replaced), or
    // the document was just opened (before the plug-ins respond to it).
    virtual void documentChanged(IdmlDocument&) {}
};

} // namespace Galley
