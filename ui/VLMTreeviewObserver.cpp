#include "ui/VLMTreeviewObserver.h"

#include "sdk/HostIdentifiers.h"
#include "sdk/IControlView.h"
#include "sdk/IDialog.h"
#include "sdk/ISubject.h"
#include "ui/VellumineDialogController.h"

namespace {

ISubject* subjectOf(IPMUnknown* widget) {
    auto* view = dynamic_cast<IControlView*>(widget);
    return view ? view->GetSubject() : nullptr;
}

} // namespace

void VLMTreeviewObserver::AutoAttach() {
    if (ISubject* subject = subjectOf(GetBoss()))
        subject->AttachObserver(this, IID_ILISTCONTROLDATA);
    syncButtons();
}

void VLMTreeviewObserver::AutoDetach() {
    if (ISubject* subject = subjectOf(GetBoss()))
        subject->DetachObserver(this, IID_ILISTCONTROLDATA);
}

void VLMTreeviewObserver::Update(ClassID change, ISubject*, PMIID protocol, void*) {
    if (change == kListSelectionChangedMessage && protocol == IID_ILISTCONTROLDATA)
        syncButtons();
}

void VLMTreeviewObserver::syncButtons() {
    auto* controller =
        dialog_ ? dynamic_cast<VellumineDialogController*>(dialog_->GetController()) : nullptr;
    if (controller)
        controller->selectionSync();
}
