#include "host/loop/SdEventLoop.h"

#include <systemd/sd-event.h>

#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <stdexcept>
#include <string>

namespace Galley {

namespace {

// sd-event coalesces timers within 250 ms unless told otherwise; idle tasks and bus
// time-outs want what they asked for.
constexpr std::uint64_t timerAccuracyUsec = 1;

std::uint64_t nowUsec() {
    timespec ts{};
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return static_cast<std::uint64_t>(ts.tv_sec) * 1000000u +
           static_cast<std::uint64_t>(ts.tv_nsec) / 1000u;
}

} // namespace

SdEventLoop::SdEventLoop() {
    int r = sd_event_new(&event_);
    if (r < 0)
        throw std::runtime_error(std::string("cannot set up the event loop: ") + std::strerror(-r));
    wakeFd_ = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (wakeFd_ < 0)
        throw std::runtime_error(std::string("cannot set up the event loop: ") +
                                 std::strerror(errno));
    wakeSource_ = watchFd(wakeFd_, EPOLLIN, [this] {
        std::uint64_t count = 0;
        while (read(wakeFd_, &count, sizeof count) > 0) {
        }
    });
}

SdEventLoop::~SdEventLoop() {
    for (auto& [id, source] : sources_)
        sd_event_source_disable_unref(source->handle);
    sources_.clear();
    if (wakeFd_ >= 0)
        close(wakeFd_);
    sd_event_unref(event_);
}

int SdEventLoop::onIo(sd_event_source*, int, std::uint32_t, void* userdata) {
    auto* source = static_cast<Source*>(userdata);
    source->loop->ready_.mark(source->id);
    return 0;
}

int SdEventLoop::onTime(sd_event_source* handle, std::uint64_t, void* userdata) {
    auto* source = static_cast<Source*>(userdata);
    sd_event_source_set_enabled(handle, SD_EVENT_OFF);
    source->loop->ready_.mark(source->id);
    return 0;
}

EventLoop::SourceId SdEventLoop::watchFd(int fd, std::uint32_t events, Callback onReady) {
    auto source = std::make_unique<Source>();
    source->loop = this;
    source->id = nextId_++;
    source->callback = std::move(onReady);
    int r = sd_event_add_io(event_, &source->handle, fd, events, &SdEventLoop::onIo, source.get());
    if (r < 0)
        throw std::runtime_error(std::string("cannot watch a file descriptor: ") +
                                 std::strerror(-r));
    const SourceId id = source->id;
    sources_[id] = std::move(source);
    return id;
}

void SdEventLoop::setFdEvents(SourceId id, std::uint32_t events) {
    auto found = sources_.find(id);
    if (found != sources_.end())
        sd_event_source_set_io_events(found->second->handle, events);
}

EventLoop::SourceId SdEventLoop::addTimer(Callback onExpiry) {
    auto source = std::make_unique<Source>();
    source->loop = this;
    source->id = nextId_++;
    source->callback = std::move(onExpiry);
    int r = sd_event_add_time(event_, &source->handle, CLOCK_MONOTONIC, UINT64_MAX,
                              timerAccuracyUsec, &SdEventLoop::onTime, source.get());
    if (r < 0)
        throw std::runtime_error(std::string("cannot add a timer: ") + std::strerror(-r));
    sd_event_source_set_enabled(source->handle, SD_EVENT_OFF);
    const SourceId id = source->id;
    sources_[id] = std::move(source);
    return id;
}

void SdEventLoop::armTimer(SourceId id, std::uint64_t usecFromNow) {
    auto found = sources_.find(id);
    if (found == sources_.end())
        return;
    sd_event_source* handle = found->second->handle;
    if (usecFromNow == noTimeout) {
        sd_event_source_set_enabled(handle, SD_EVENT_OFF);
        return;
    }
    // Re-arming keeps the one source: no allocation per timer period.
    sd_event_source_set_time(handle, nowUsec() + usecFromNow);
    sd_event_source_set_enabled(handle, SD_EVENT_ONESHOT);
}

void SdEventLoop::remove(SourceId id) {
    auto found = sources_.find(id);
    if (found == sources_.end())
        return;
    sd_event_source_disable_unref(found->second->handle);
    sources_.erase(found);
    ready_.forget(id);
}

bool SdEventLoop::iterate(std::uint64_t timeoutUsec) {
    int r = sd_event_run(event_, timeoutUsec);
    if (r < 0 && r != -EINTR)
        return false;
    // A source removed by an earlier callback is skipped.
    ready_.runAll([this](SourceId id) {
        auto found = sources_.find(id);
        if (found == sources_.end())
            return;
        Callback callback = found->second->callback; // the source may go away while it runs
        callback();
    });
    return true;
}

void SdEventLoop::wakeUp() {
    const std::uint64_t one = 1;
    [[maybe_unused]] ssize_t written = write(wakeFd_, &one, sizeof one);
}

} // namespace Galley
