#include "document/DocumentServiceProvider.h"

#include "sdk/HostIdentifiers.h"

namespace VLM {

DocumentServiceProvider::DocumentServiceProvider() {
    serviceIDs = {kAfterOpenDocSignalResponderService, 15873, kAfterNewDocSignalResponderService,
                  kBeforeCloseDocSignalResponderService};
    if (serviceIDs.empty())
        serviceIDs.push_back(kInvalidService);
}

void DocumentServiceProvider::GetName(PMString* name) {
    if (name)
        name->SetCString("DocWatch Responder Service");
}

void DocumentServiceProvider::GetServiceIDs(K2Vector<ServiceID>& ids) {
    ids.insert(ids.end(), serviceIDs.begin(), serviceIDs.end());
}

} // namespace VLM
