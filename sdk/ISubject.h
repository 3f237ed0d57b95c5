#pragma once

#include "sdk/HostTypes.h"

class IObserver;

// Announces changes to the observers attached to it, per protocol. Observers are not owned:
// an observer detaches itself before it is destroyed. Attaching twice for the same protocol
// has no further effect; an observer may detach itself (or others) during Update.
class ISubject {
public:
    virtual ~ISubject() = default;
    virtual void AttachObserver(IObserver* observer, PMIID protocol) = 0;
    virtual void DetachObserver(IObserver* observer, PMIID protocol) = 0;
    virtual bool IsAttached(const IObserver* observer, PMIID protocol) const = 0;
    // Calls Update of every observer attached for `protocol`, in order of attachment.
    virtual void Change(ClassID change, PMIID protocol, void* changedBy = nullptr) = 0;
};
