#pragma once

#include "sdk/IPMUnknown.h"
#include "sdk/K2Vector.h"
#include "sdk/PMString.h"

class ISignalMgr;

// Tells the host which services (signals) a plug-in's responder wants.
class CServiceProvider : public IPMUnknown {
public:
    enum InstancePerX { kInstancePerSession, kInstancePerCall };

    virtual void GetName(PMString* name) = 0;
    virtual ServiceID GetServiceID() = 0;
    virtual bool HasMultipleIDs() const { return false; }
    virtual void GetServiceIDs(K2Vector<ServiceID>& ids) { ids.push_back(GetServiceID()); }
    virtual bool IsDefaultServiceProvider() { return false; }
    virtual InstancePerX GetInstantiationPolicy() { return kInstancePerSession; }
};

// Receives the signals its service provider asked for, on the host's main thread.
class CResponder : public IPMUnknown {
public:
    virtual void Respond(ISignalMgr* signalMgr) = 0;
};
