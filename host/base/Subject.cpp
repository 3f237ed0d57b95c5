#include "host/base/Subject.h"

#include "sdk/IObserver.h"

#include <algorithm>

namespace Galley {

void Subject::AttachObserver(IObserver* observer, PMIID protocol) {
    if (observer && !IsAttached(observer, protocol))
        attached_.emplace_back(observer, protocol);
}

void Subject::DetachObserver(IObserver* observer, PMIID protocol) {
    std::erase(attached_, std::make_pair(observer, protocol));
}

bool Subject::IsAttached(const IObserver* observer, PMIID protocol) const {
    return std::any_of(attached_.begin(), attached_.end(), [&](const auto& entry) {
        return entry.first == observer && entry.second == protocol;
    });
}

void Subject::Change(ClassID change, PMIID protocol, void* changedBy) {
    // Observers may attach or detach others while being told; tell each one that is still
    // attached when its turn comes.
    const auto snapshot = attached_;
    for (const auto& [observer, observed] : snapshot) {
        // A disabled observer stays attached but hears nothing until it is enabled again.
        if (observed == protocol && IsAttached(observer, protocol) && observer->IsEnabled())
            observer->Update(change, this, protocol, changedBy);
    }
}

} // namespace Galley
