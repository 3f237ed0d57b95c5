#pragma once

#include "sdk/HostTypes.h"

// The common base of the objects that cross the host/plug-in boundary: the host's objects
// that carry plug-in add-ins (dialogs, widgets) and every object a plug-in registers a
// factory for. The host owns what it creates; a plug-in never deletes an IPMUnknown it did
// not create itself.
class IPMUnknown {
public:
    virtual ~IPMUnknown() = default;
};

// A host object that carries add-ins: plug-in objects the host created on it from the
// plug-in's registrations, found by the interface identifier they were registered under.
class IAddInHolder {
public:
    virtual ~IAddInHolder() = default;
    // Null when nothing was registered under `iid` for this object.
    virtual IPMUnknown* QueryAddIn(PMIID iid) const = 0;
};

template <typename T>
T* QueryAddInAs(const IAddInHolder* holder, PMIID iid) {
    return holder ? dynamic_cast<T*>(holder->QueryAddIn(iid)) : nullptr;
}
