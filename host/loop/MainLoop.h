#pragma once

#include "host/loop/EventLoop.h"

#include <chrono>
#include <deque>
#include <functional>
#include <optional>
#include <vector>

namespace Galley {

// The host's main loop over an EventLoop: work posted for the next turn, hooks that run
// before each wait, and nested runs with a done condition and a deadline.
class MainLoop {
public:
    using Clock = std::chrono::steady_clock;
    using Callback = EventLoop::Callback;

    explicit MainLoop(EventLoop& loop) : loop_(loop) {}

    EventLoop& events() { return loop_; }

    // Runs `work` at the next turn, in the order posted.
    void post(Callback work);
    // Runs before every wait (to bring a source's events and timer up to date).
    int addPrepareHook(Callback hook);
    void removePrepareHook(int hook);

    // Turns until `done()` answers true, the deadline passes or quit() was called.
    // Returns true when done() ended it. May be called from inside a turn (nested).
    bool runUntil(const std::function<bool()>& done, std::optional<Clock::time_point> deadline);
    // One turn: posted work, prepare hooks, one wait of at most `maxWait`, ready callbacks.
    void turn(std::chrono::microseconds maxWait);

    // Makes every runUntil return, at every level.
    void quit();
    bool quitting() const { return quitting_; }
    int depth() const { return depth_; }

private:
    void runPosted();

    EventLoop& loop_;
    std::deque<Callback> posted_;
    std::vector<std::pair<int, Callback>> prepareHooks_;
    int nextHook_ = 1;
    bool quitting_ = false;
    int depth_ = 0;
};

} // namespace Galley
