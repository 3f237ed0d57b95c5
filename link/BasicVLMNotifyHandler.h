#pragma once

#include "link/VLMNotifyHandler.h"

#include <vector>

namespace VLM {

// The listener registry. Listeners are not owned. Registrations and removals wait in
// their own lists until the next broadcast, so that a listener may register or leave from
// inside OnVLMNotify without disturbing the walk over the active listeners.
class BasicVLMNotifyHandler : public IVLMNotifyHandler {
public:
    void push() override {}
    void registerNotifer(IVLMChangeNotifier* notifier) override;
    void unregisterNotifer(IVLMChangeNotifier* notifier) override;
    void clearNotifiers() override;
    void notifiyAll(const std::string& text) override;

    const std::vector<IVLMChangeNotifier*>& activeNotifiers() const { return notifiers; }

private:
    void applyPendingChanges();

    std::vector<IVLMChangeNotifier*> notifiers;
    std::vector<IVLMChangeNotifier*> pendingAdds;
    std::vector<IVLMChangeNotifier*> pendingRemovals;
};

} // namespace VLM
