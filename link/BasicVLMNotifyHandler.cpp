#include "link/BasicVLMNotifyHandler.h"

#include "link/VLMChangeNotifier.h"

#include <algorithm>

namespace VLM {

void BasicVLMNotifyHandler::registerNotifer(IVLMChangeNotifier* notifier) {
    pendingAdds.push_back(notifier);
}

void BasicVLMNotifyHandler::unregisterNotifer(IVLMChangeNotifier* notifier) {
    pendingRemovals.push_back(notifier);
}

void BasicVLMNotifyHandler::clearNotifiers() {
    notifiers.clear();
}

// Removals go first: a listener registered and unregistered before one broadcast is
// still registered after it.
void BasicVLMNotifyHandler::applyPendingChanges() {
    for (IVLMChangeNotifier* leaving : pendingRemovals) {
        auto found = std::find(notifiers.begin(), notifiers.end(), leaving);
        if (found != notifiers.end()) {
            notifiers.erase(found);
        }
    }
    pendingRemovals.clear();
    notifiers.insert(notifiers.end(), pendingAdds.begin(), pendingAdds.end());
    pendingAdds.clear();
}

void BasicVLMNotifyHandler::notifiyAll(const std::string& text) {
    applyPendingChanges();
    // By index: a listener may clear the registry from inside OnVLMNotify.
    for (std::size_t i = 0; i < notifiers.size(); ++i) {
        notifiers[i]->OnVLMNotify(text);
    }
}

} // namespace VLM
