#pragma once

#include "platform/Clock.h"

#include <cstdint>
#include <vector>

namespace VLMTest {

// A clock that never sleeps: delays advance the tick count at once, and every date query
// moves the date on by a fixed step, so bounded waits end after a known number of polls.
class FakeClock : public Platform::Clock {
public:
    std::uint32_t tickCount() override { return ticks; }
    void delay(std::uint32_t duration) override;
    std::uint32_t dateTimeSeconds() override;

    void setSecondsPerDateQuery(std::uint32_t step) { secondsPerQuery = step; }
    const std::vector<std::uint32_t>& delays() const { return delayed; }
    std::uint64_t totalDelayTicks() const;
    int dateQueries() const { return queries; }
    void reset();

private:
    std::uint32_t ticks = 0;
    std::uint32_t seconds = 1000;
    std::uint32_t secondsPerQuery = 1;
    int queries = 0;
    std::vector<std::uint32_t> delayed;
};

} // namespace VLMTest
