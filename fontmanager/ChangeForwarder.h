#pragma once

#include "fontmanager/Catalog.h"
#include "platform/AppEvents.h"

#include <cstdint>
#include <functional>
#include <string>

namespace Vellumine {

// Tells the applications that named themselves in requests about library changes: for
// each new kind in the change journal, one "VLM4" event (the class they named) with that
// kind as event ID. Events are sent without waiting for a reply, because the receiver may
// itself be blocked in a request to vellumine.
class ChangeForwarder {
public:
    // Sends one event to a signature without waiting; returns a platform status.
    using Sender = std::function<int(const std::string& signature, const Platform::AppEvent&)>;

    ChangeForwarder(Catalog& catalog, Sender sender);

    // Skips what the journal holds already: changes from before the server started are old
    // news.
    void skipPastChanges();
    // Sends events for the journal entries not forwarded yet; returns how many were sent.
    int forwardNewChanges();

private:
    Catalog& catalog;
    Sender sender;
    std::int64_t lastForwarded = 0;
};

} // namespace Vellumine
