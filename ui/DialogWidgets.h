#pragma once

#include "sdk/HostTypes.h"

#include <initializer_list>

class IControlView;
class IPanelControlData;
class ISubject;
class PMString;

// Small null-tolerant steps on a dialog's widgets: a dialog whose widget is missing simply
// does not do the step.
namespace DialogWidgets {

inline constexpr int32 kAnyDepth = 9999;

IControlView* find(IPanelControlData* panel, WidgetID id);
void enable(IControlView* widget, bool enabled);
// Sets the text of a text widget or a button's caption, announcing the change.
void setText(IControlView* widget, const PMString& text);
// Which of `candidates` announced through `subject`; kInvalidWidgetID when none did.
WidgetID idOfSubject(IPanelControlData* panel, const ISubject* subject,
                     std::initializer_list<WidgetID> candidates);

} // namespace DialogWidgets
