#pragma once

#include "sdk/HostTypes.h"
#include "sdk/IPMUnknown.h"

class ISubject;

// Receives the changes that a subject announces on a protocol it is attached for.
// A disabled observer stays attached but is passed over when its subjects announce.
class IObserver : public IPMUnknown {
public:
    // `changedBy` is change-specific data owned by the announcer, valid during the call.
    virtual void Update(ClassID change, ISubject* subject, PMIID protocol, void* changedBy) = 0;

    // Attach to / detach from whatever the observer watches. The host calls them when the
    // object the observer lives on is shown and hidden (dialogs and their widgets); others
    // call them where their logic says.
    virtual void AutoAttach() {}
    virtual void AutoDetach() {}

    virtual bool IsEnabled() const { return enabled; }
    virtual void SetEnabled(bool enable) { enabled = enable; }

private:
    bool enabled = true;
};

// The base of a plug-in's observers: remembers the interface identifier it was made for
// and the host object it lives on (null for one that lives on the session).
class CObserver : public IObserver {
public:
    explicit CObserver(IPMUnknown* boss = nullptr, PMIID iid = 0) : boss_(boss), iid_(iid) {}
    PMIID GetIID() const { return iid_; }
    IPMUnknown* GetBoss() const { return boss_; }

private:
    IPMUnknown* boss_;
    PMIID iid_;
};
