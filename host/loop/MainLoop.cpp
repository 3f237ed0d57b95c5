#include "host/loop/MainLoop.h"

#include <algorithm>

namespace Galley {

void MainLoop::post(Callback work) {
    posted_.push_back(std::move(work));
    loop_.wakeUp();
}

int MainLoop::addPrepareHook(Callback hook) {
    prepareHooks_.emplace_back(nextHook_, std::move(hook));
    return nextHook_++;
}

void MainLoop::removePrepareHook(int hook) {
    std::erase_if(prepareHooks_, [hook](const auto& entry) { return entry.first == hook; });
}

void MainLoop::runPosted() {
    // Work posted while running waits for the next turn, so a task that posts itself
    // cannot starve the wait.
    std::deque<Callback> batch;
    batch.swap(posted_);
    for (auto& work : batch) {
        if (quitting_)
            break;
        work();
    }
}

void MainLoop::turn(std::chrono::microseconds maxWait) {
    runPosted();
    if (quitting_)
        return;
    for (auto& [id, hook] : prepareHooks_)
        hook();
    const auto wait = posted_.empty() ? maxWait : std::chrono::microseconds(0);
    if (!loop_.iterate(static_cast<std::uint64_t>(std::max<std::int64_t>(0, wait.count()))))
        quit();
}

bool MainLoop::runUntil(const std::function<bool()>& done,
                        std::optional<Clock::time_point> deadline) {
    ++depth_;
    bool finished = false;
    while (!quitting_) {
        if (done && done()) {
            finished = true;
            break;
        }
        auto maxWait = std::chrono::microseconds(std::chrono::seconds(1));
        if (deadline) {
            const auto left = *deadline - Clock::now();
            if (left <= Clock::duration::zero())
                break;
            maxWait =
                std::min(maxWait, std::chrono::duration_cast<std::chrono::microseconds>(left) +
                                      std::chrono::microseconds(1));
        }
        turn(maxWait);
    }
    --depth_;
    return finished;
}

void MainLoop::quit() {
    quitting_ = true;
    loop_.wakeUp();
}

} // namespace Galley
