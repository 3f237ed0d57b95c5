#pragma once

#include "platform/Clock.h"

namespace Platform::Linux {

// Time from the monotonic clock: ticks (1/60 s) and whole seconds since an unspecified
// start (the system's boot). Both wrap around in unsigned 32-bit arithmetic; callers
// compare differences only. delay() really sleeps.
class RealClock : public Platform::Clock {
public:
    std::uint32_t tickCount() override;
    void delay(std::uint32_t ticks) override;
    std::uint32_t dateTimeSeconds() override;
};

} // namespace Platform::Linux
