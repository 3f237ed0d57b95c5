#pragma once

#include "sdk/IDialog.h"
#include "sdk/IListBox.h"
#include "sdk/PMString.h"

#include <vector>

// The font replacement dialog: every installed face, one chosen with OK or a double-click.
// The choice is left on the dialog: its text slot holds the name, its integer slot is 1 when
// a name was chosen on OK and 0 otherwise.
class ReplacerDialogController : public CDialogController {
public:
    using CDialogController::CDialogController;

    void InitializeDialogFields(IActiveContext* context) override;
    void ApplyDialogFields(IActiveContext* context, const WidgetID& widget) override;
    // Fills the list with every face of every family of the host's font manager, in order.
    void synchronizeDialog();
    // Entry n is the name shown by list element n.
    const std::vector<PMString>& names() const { return names_; }

private:
    std::vector<PMString> names_;
};

class ReplacerDialogObserver : public CDialogObserver {
public:
    using CDialogObserver::CDialogObserver;

    void AutoAttach() override;
    void AutoDetach() override;
    void Update(ClassID change, ISubject* subject, PMIID protocol, void* changedBy) override;
};

// A double-click on a list element confirms the dialog as its default button would; the
// event is not consumed, so the element is still selected.
class ReplacerEventHandler : public IPMUnknown, public IEventHandler {
public:
    explicit ReplacerEventHandler(IPMUnknown* /*element*/) {}
    bool ButtonDblClk(IEvent* event) override;
};
