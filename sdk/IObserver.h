#pragma once

#include "sdk/HostTypes.h"

class ISubject;

// Receives the changes that a subject announces on a protocol it is attached for.
class IObserver {
public:
    virtual ~IObserver() = default;
    // `changedBy` is change-specific data owned by the announcer, valid during the call.
    virtual void Update(ClassID change, ISubject* subject, PMIID protocol, void* changedBy) = 0;
};
