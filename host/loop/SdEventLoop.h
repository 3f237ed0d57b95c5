#pragma once

#include "host/loop/EventLoop.h"
#include "host/loop/ReadySources.h"

#include <map>
#include <memory>
#include <vector>

typedef struct sd_event sd_event;
typedef struct sd_event_source sd_event_source;

namespace Galley {

// The event loop of batch mode, on sd-event. Its handlers only note which sources are
// ready; iterate() runs their callbacks after sd_event_run has returned.
class SdEventLoop : public EventLoop {
public:
    // Throws std::runtime_error when sd-event cannot be set up.
    SdEventLoop();
    ~SdEventLoop() override;
    SdEventLoop(const SdEventLoop&) = delete;
    SdEventLoop& operator=(const SdEventLoop&) = delete;

    SourceId watchFd(int fd, std::uint32_t events, Callback onReady) override;
    void setFdEvents(SourceId source, std::uint32_t events) override;
    SourceId addTimer(Callback onExpiry) override;
    void armTimer(SourceId timer, std::uint64_t usecFromNow) override;
    void remove(SourceId source) override;
    bool iterate(std::uint64_t timeoutUsec) override;
    void wakeUp() override;

private:
    struct Source {
        SdEventLoop* loop = nullptr;
        SourceId id = 0;
        sd_event_source* handle = nullptr;
        Callback callback;
    };
    static int onIo(sd_event_source*, int, std::uint32_t, void* userdata);
    static int onTime(sd_event_source*, std::uint64_t, void* userdata);

    sd_event* event_ = nullptr;
    int wakeFd_ = -1;
    SourceId wakeSource_ = 0;
    SourceId nextId_ = 1;
    std::map<SourceId, std::unique_ptr<Source>> sources_;
    ReadySources ready_;
};

} // namespace Galley
