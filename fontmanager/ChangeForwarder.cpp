#include "fontmanager/ChangeForwarder.h"

#include "foundation/Logger.h"

#include <algorithm>
#include <vector>

namespace Vellumine {

ChangeForwarder::ChangeForwarder(Catalog& catalog, Sender sender)
    : catalog(catalog), sender(std::move(sender)) {}

void ChangeForwarder::skipPastChanges() {
    lastForwarded = catalog.lastChange();
}

int ChangeForwarder::forwardNewChanges() {
    const auto changes = catalog.changesAfter(lastForwarded);
    if (changes.empty()) {
        return 0;
    }
    lastForwarded = changes.back().id;
    std::vector<std::string> kinds;
    for (const auto& change : changes) {
        if (std::find(kinds.begin(), kinds.end(), change.kind) == kinds.end()) {
            kinds.push_back(change.kind);
        }
    }
    int sent = 0;
    for (const auto& target : catalog.targets()) {
        for (const auto& kind : kinds) {
            const int status = sender(target.signature, {target.eventClass, kind, ""});
            Logger::log("vellumine-events", "sent " + target.eventClass + "/" + kind + " to " +
                                                target.signature + " (status " +
                                                std::to_string(status) + ")");
            sent += status == 0 ? 1 : 0;
        }
    }
    return sent;
}

} // namespace Vellumine
