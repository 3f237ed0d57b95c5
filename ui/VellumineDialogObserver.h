#pragma once

#include "link/VLMChangeNotifier.h"
#include "sdk/IDialog.h"

// Watches the fonts dialog's buttons and hears the font manager's news while the dialog
// is shown: each news either brings the tree up to date or, once no font is missing any
// more, closes the dialog.
class VellumineDialogObserver : public CDialogObserver, public VLM::IVLMChangeNotifier {
public:
    using CDialogObserver::CDialogObserver;

    void AutoAttach() override;
    void AutoDetach() override;
    void Update(ClassID change, ISubject* subject, PMIID protocol, void* changedBy) override;
    // Drops the tree's rows before the dialog closes, so no row outlives the tree's data.
    void CloseDialog(int16 reason = 0) override;
    void OnVLMNotify(const std::string& message) override;
};
