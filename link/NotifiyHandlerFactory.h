#pragma once

#include "link/VLMNotifyHandler.h"

#include <cstddef>

namespace VLM {

// The one process-wide transport.
class NotifiyHandlerFactory {
public:
    // Creates the transport on first use. With renew, an existing transport is retired
    // and a fresh one made: the retired one keeps its installed event handler and watcher,
    // because an event or a firing may still be on its way to it, so it is neither
    // destroyed nor freed but kept in a list of retired transports for the life of the
    // process.
    static IVLMNotifyHandler* getNotifyHandler(bool renew);

    static std::size_t retiredCount();
};

} // namespace VLM
