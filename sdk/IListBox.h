#pragma once

#include "sdk/HostTypes.h"
#include "sdk/K2Vector.h"
#include "sdk/ResourceName.h"

class IControlView;

// The elements of a list box: widgets made from an element resource.
class IListControlData {
public:
    virtual ~IListControlData() = default;
    // Makes an element from `element` and inserts it at `position` (clamped to the end).
    // Null when the resource cannot be had.
    virtual IControlView* AddListElementWidget(const RsrcSpec& element, int32 position) = 0;
    virtual void RemoveAll() = 0;
    virtual int32 Length() const = 0;
    virtual IControlView* GetElement(int32 position) const = 0;
};

// A list box's selection.
class IListBoxController {
public:
    virtual ~IListBoxController() = default;
    // Selected positions, in ascending order.
    virtual void GetSelected(K2Vector<int32>& positions) const = 0;
    virtual void Select(int32 position, bool notify = true) = 0;
    virtual void DeselectAll(bool notify = true) = 0;
};

// Input events of a widget. The host hands a double-click on a list element to the event
// handler registered on the element, after selecting the element.
class IEvent {
public:
    virtual ~IEvent() = default;
    virtual IControlView* GetTarget() const = 0;
};

class IEventHandler {
public:
    virtual ~IEventHandler() = default;
    // True when the handler consumed the event.
    virtual bool ButtonDblClk(IEvent* event) = 0;
};
