#include "link/NotifiyHandlerFactory.h"

#include "link/MacVLMNotifyHandler.h"

#include <vector>

namespace VLM {

namespace {

MacVLMNotifyHandler*& current() {
    static MacVLMNotifyHandler* instance = nullptr;
    return instance;
}

// Never destroyed, so that the retired transports stay reachable until the process ends.
std::vector<MacVLMNotifyHandler*>& retired() {
    static auto* list = new std::vector<MacVLMNotifyHandler*>();
    return *list;
}

} // namespace

IVLMNotifyHandler* NotifiyHandlerFactory::getNotifyHandler(bool renew) {
    MacVLMNotifyHandler*& instance = current();
    if (renew && instance != nullptr) {
        retired().push_back(instance);
        instance = nullptr;
    }
    if (instance == nullptr) {
        instance = new MacVLMNotifyHandler();
    }
    return instance;
}

std::size_t NotifiyHandlerFactory::retiredCount() {
    return retired().size();
}

} // namespace VLM
