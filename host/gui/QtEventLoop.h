#pragma once

#include "host/loop/EventLoop.h"
#include "host/loop/ReadySources.h"

#include <QObject>

#include <map>
#include <memory>
#include <vector>

class QSocketNotifier;
class QTimer;

namespace Galley {

// The event loop of the GUI, on Qt's: descriptors through socket notifiers, timers through
// single-shot QTimers, the wait through Qt's own event processing (which also delivers the
// windows' input). As with sd-event, ready callbacks run after the wait, so a callback may
// start a nested wait.
class QtEventLoop : public QObject, public EventLoop {
public:
    QtEventLoop();
    ~QtEventLoop() override;

    SourceId watchFd(int fd, std::uint32_t events, Callback onReady) override;
    void setFdEvents(SourceId source, std::uint32_t events) override;
    SourceId addTimer(Callback onExpiry) override;
    void armTimer(SourceId timer, std::uint64_t usecFromNow) override;
    void remove(SourceId source) override;
    bool iterate(std::uint64_t timeoutUsec) override;
    void wakeUp() override;
    void serviceWindows() override;

private:
    struct Source {
        Callback callback;
        std::uint32_t events = 0;
        std::unique_ptr<QSocketNotifier> read, write;
        std::unique_ptr<QTimer> timer;
    };

    SourceId nextId_ = 1;
    std::map<SourceId, std::unique_ptr<Source>> sources_;
    ReadySources ready_;
    std::unique_ptr<QTimer> waitLimit_;
};

} // namespace Galley
