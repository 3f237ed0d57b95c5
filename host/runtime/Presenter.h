#pragma once

#include "host/dialogs/DialogPresenter.h"
#include "sdk/CAlert.h"

#include <string>

namespace Galley {

class IdmlDocument;

// Whoever shows Galley to the user: the terminal in batch mode, the windows of the GUI, a
// recorder in tests. Besides the dialogs, the alerts, lines of status and the document.
class Presenter : public DialogPresenter {
public:
    // Shows an alert (texts already translated) and answers with the number of the button
    // that closed it.
    virtual int16 alert(IAlertPresenter::Kind kind, const std::string& message,
                        const std::string buttons[3], int16 defaultButton) = 0;
    // A line for the user about what the host does (documents opened, plug-ins' failures).
    virtual void status(const std::string&) {}
    // A line about another application, said while an action still runs (the font manager
    // does not answer, its reply was refused): a status line unless the view says otherwise.
    virtual void notice(const std::string& message) { status(message); }
    // The document's fonts were resolved again (fonts arrived, went or were replaced), or
    // the document was just opened (before the plug-ins respond to it).
    virtual void documentChanged(IdmlDocument&) {}
};

} // namespace Galley
