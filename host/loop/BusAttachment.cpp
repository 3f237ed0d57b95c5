#include "host/loop/BusAttachment.h"

#include "platform/Status.h"
#include "platform/linux/DBusAppEvents.h"

#include <poll.h>

namespace Galley {

BusAttachment::BusAttachment(MainLoop& loop, Platform::Linux::DBusAppEvents& bus, Runner runner)
    : loop_(loop), bus_(bus), runner_(std::move(runner)) {
    fdSource_ = loop_.events().watchFd(bus_.fd(), static_cast<std::uint32_t>(bus_.events()),
                                       [this] { dispatch(); });
    timer_ = loop_.events().addTimer([this] { dispatch(); });
    prepareHook_ = loop_.addPrepareHook([this] { prepare(); });
}

BusAttachment::~BusAttachment() {
    loop_.events().remove(fdSource_);
    loop_.events().remove(timer_);
    loop_.removePrepareHook(prepareHook_);
}

void BusAttachment::prepare() {
    if (broken_)
        return;
    loop_.events().setFdEvents(fdSource_, static_cast<std::uint32_t>(bus_.events()));
    loop_.events().armTimer(timer_, bus_.timeoutUsec());
}

void BusAttachment::dispatch() {
    if (broken_)
        return;
    int status = Platform::Status::ok;
    runner_("a session-bus event", [&] { status = bus_.processPending(); });
    if (status != Platform::Status::ok) {
        broken_ = true;
        loop_.events().remove(fdSource_);
        loop_.events().remove(timer_);
    }
}

} // namespace Galley
