#pragma once

#include "sdk/IObserver.h"

class IDialog;

// Watches the font tree's selection so that the fonts dialog's buttons follow every
// change of it. It lives on the tree widget; the dialog's controller tells it which dialog
// it belongs to when the dialog opens.
class VLMTreeviewObserver : public CObserver {
public:
    explicit VLMTreeviewObserver(IPMUnknown* treeWidget) : CObserver(treeWidget) {}

    void setDialog(IDialog* dialog) { dialog_ = dialog; }
    void AutoAttach() override;
    void AutoDetach() override;
    void Update(ClassID change, ISubject* subject, PMIID protocol, void* changedBy) override;

private:
    // On attaching (the tree's first rows) and on every change of the selection.
    void syncButtons();

    IDialog* dialog_ = nullptr;
};
