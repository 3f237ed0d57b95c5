#pragma once

#include "host/loop/MainLoop.h"

#include <functional>
#include <string>

namespace Platform::Linux {
class DBusAppEvents;
}

namespace Galley {

// Dispatches the host's session-bus connection from the main loop: its descriptor and its
// time-out are brought up to date before every wait, and incoming calls (the plug-in's
// app-event handlers) run on the main thread between loop iterations. Messages that a
// blocking send read ahead are dispatched too: the bus then reports a time-out of zero.
class BusAttachment {
public:
    using Runner = std::function<void(const std::string& what, const std::function<void()>& call)>;
    BusAttachment(MainLoop& loop, Platform::Linux::DBusAppEvents& bus, Runner runner);
    ~BusAttachment();
    BusAttachment(const BusAttachment&) = delete;
    BusAttachment& operator=(const BusAttachment&) = delete;

    bool broken() const { return broken_; }

private:
    void prepare();
    void dispatch();

    MainLoop& loop_;
    Platform::Linux::DBusAppEvents& bus_;
    Runner runner_;
    EventLoop::SourceId fdSource_ = 0;
    EventLoop::SourceId timer_ = 0;
    int prepareHook_ = 0;
    bool broken_ = false;
};

} // namespace Galley
