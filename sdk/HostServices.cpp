#include "sdk/ICommand.h"
#include "sdk/ISession.h"
#include "sdk/TickCount.h"

#include <chrono>

ISession* gSession = nullptr;

namespace {
TickSource tickSource = nullptr;

uint32 monotonicTicks() {
    using Ticks = std::chrono::duration<long long, std::ratio<1, 60>>;
    auto now = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<uint32>(std::chrono::duration_cast<Ticks>(now).count());
}
} // namespace

uint32 TickCount() {
    return tickSource ? tickSource() : monotonicTicks();
}

void SetTickSource(TickSource source) {
    tickSource = source;
}

ErrorCode CmdUtils::ProcessCommand(ICommand* command) {
    return command ? command->Do() : kFailure;
}
