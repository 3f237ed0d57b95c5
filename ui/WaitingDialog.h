#pragma once

#include "link/VLMChangeNotifier.h"
#include "sdk/IDialog.h"

#include <string>

// The activation progress dialog: it shows how many of the document's fonts have arrived
// and closes itself once none is missing. It does not poll; the font manager's news drive it.

// Nothing to fill or apply: the observer updates the widgets.
class WaitingDialogController : public CDialogController {
public:
    using CDialogController::CDialogController;
};

class WaitingDialogObserver : public IClosingDialogObserver, public VLM::IVLMChangeNotifier {
public:
    using IClosingDialogObserver::IClosingDialogObserver;

    // "Please Wait, 7 of 10 fonts activated".
    static std::string progressText(int activated, int total);

    // Restarts the font-system refresh for as long as the dialog is shown.
    void AutoAttach() override;
    void AutoDetach() override;
    // Several news in a row may each ask to close: only the first closes.
    void CloseDialog(int16 reason = 0) override;
    void OnVLMNotify(const std::string& message) override;
};
