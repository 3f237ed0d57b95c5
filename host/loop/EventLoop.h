#pragma once

#include <cstdint>
#include <functional>

namespace Galley {

// The host's event loop, as the runtime sees it: file descriptors, timers, and one wait.
// Two implementations: sd-event (batch mode, tests) and Qt's loop (the GUI).
//
// Callbacks never run inside the implementation's own dispatch: the loop queues them and
// runs them when iterate() has finished waiting. So a callback may run the loop again
// (a modal wait is a nested iterate), which sd-event does not allow from its handlers.
class EventLoop {
public:
    using Callback = std::function<void()>;
    using SourceId = std::uint64_t;
    static constexpr std::uint64_t noTimeout = UINT64_MAX;

    virtual ~EventLoop() = default;

    // Watches `fd` for `events` (poll(2) flags); `onReady` runs after each wait in which it
    // was ready.
    virtual SourceId watchFd(int fd, std::uint32_t events, Callback onReady) = 0;
    virtual void setFdEvents(SourceId source, std::uint32_t events) = 0;
    // A timer, disarmed until armTimer; it fires once per arming.
    virtual SourceId addTimer(Callback onExpiry) = 0;
    // Arms the timer to fire `usecFromNow` microseconds from now; noTimeout disarms it.
    virtual void armTimer(SourceId timer, std::uint64_t usecFromNow) = 0;
    virtual void remove(SourceId source) = 0;

    // Waits until some source is ready or `timeoutUsec` has passed, then runs the callbacks
    // of the ready sources. False when the loop cannot wait any more (broken).
    virtual bool iterate(std::uint64_t timeoutUsec) = 0;
    // Makes a wait in progress return (from any thread).
    virtual void wakeUp() = 0;

    // Keeps the windows alive without waiting and without running any callback: painting
    // and the window manager's messages are handled, user input and every source (the bus,
    // timers, descriptors) wait for the next iterate(). For waits inside plug-in code, which
    // must not be entered again but must not freeze the windows either. Nothing to do where
    // there are no windows.
    virtual void serviceWindows() {}
};

} // namespace Galley
