#pragma once

#include "sdk/CServiceProvider.h"

#include <vector>

namespace VLM {

// Tells the host which document signals the plug-in wants: after open (the only one acted
// on), and three more that the responder deliberately ignores.
class DocumentServiceProvider : public CServiceProvider {
public:
    DocumentServiceProvider();
    void GetName(PMString* name) override;
    ServiceID GetServiceID() override { return serviceIDs.front(); }
    bool HasMultipleIDs() const override { return true; }
    void GetServiceIDs(K2Vector<ServiceID>& ids) override;

private:
    std::vector<ServiceID> serviceIDs;
};

// Checks a newly opened document's fonts: asks the font manager about the missing ones and
// shows the progress dialog or the fonts dialog until the user or the fonts' arrival ends it.
class DocumentResponder : public CResponder {
public:
    void Respond(ISignalMgr* signalMgr) override;
};

} // namespace VLM
