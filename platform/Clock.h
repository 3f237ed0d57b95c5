#pragma once

#include <cstdint>

namespace Platform {

// Time as the link's retry loops and bounded waits count it. Ticks are sixtieths of a
// second; dates are whole seconds. Tests replace the clock so that waits take no time.
class Clock {
public:
    virtual ~Clock() = default;
    virtual std::uint32_t tickCount() = 0;
    virtual void delay(std::uint32_t ticks) = 0;
    virtual std::uint32_t dateTimeSeconds() = 0;
};

} // namespace Platform
