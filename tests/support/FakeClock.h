#pragma once

#include "platform/Clock.h"

#include <cstdint>
#include <vector>

namespace VLMTest {

// A clock that never sleeps: delays advance the tick count at once, and every date query
// moves the date on by one second, so bounded waits end after a known number of polls.
class FakeClock : public Platform::Clock {
public:
    std::uint32_t tickCount() override { return ticks; }
    void delay(std::uint32_t duration) override {
        delayed.push_back(duration);
        ticks += duration;
    }
    std::uint32_t dateTimeSeconds() override {
        ++queries;
        return seconds++;
    }

    const std::vector<std::uint32_t>& delays() const { return delayed; }
    int dateQueries() const { return queries; }

private:
    std::uint32_t ticks = 0;
    std::uint32_t seconds = 1000;
    int queries = 0;
    std::vector<std::uint32_t> delayed;
};

} // namespace VLMTest
