#include "ui/DialogWidgets.h"

#include "sdk/IControlView.h"

namespace DialogWidgets {

IControlView* find(IPanelControlData* panel, WidgetID id) {
    return panel ? panel->FindWidget(id, kAnyDepth) : nullptr;
}

void enable(IControlView* widget, bool enabled) {
    if (widget)
        widget->Enable(enabled);
}

void setText(IControlView* widget, const PMString& text) {
    if (ITextControlData* data = widget ? widget->GetTextControlData() : nullptr)
        data->SetString(text, true, true);
}

WidgetID idOfSubject(IPanelControlData* panel, const ISubject* subject,
                     std::initializer_list<WidgetID> candidates) {
    for (WidgetID id : candidates) {
        IControlView* widget = find(panel, id);
        if (widget && widget->GetSubject() == subject)
            return id;
    }
    return kInvalidWidgetID;
}

} // namespace DialogWidgets
