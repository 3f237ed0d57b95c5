#include "support/FakeClock.h"

#include <numeric>

namespace VLMTest {

void FakeClock::delay(std::uint32_t duration) {
    delayed.push_back(duration);
    ticks += duration;
}

std::uint32_t FakeClock::dateTimeSeconds() {
    ++queries;
    const std::uint32_t now = seconds;
    seconds += secondsPerQuery;
    return now;
}

std::uint64_t FakeClock::totalDelayTicks() const {
    return std::accumulate(delayed.begin(), delayed.end(), std::uint64_t{0});
}

void FakeClock::reset() {
    ticks = 0;
    seconds = 1000;
    secondsPerQuery = 1;
    queries = 0;
    delayed.clear();
}

} // namespace VLMTest
