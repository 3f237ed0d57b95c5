#pragma once

#include "host/loop/EventLoop.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace Galley {

// The sources that became ready during one wait of an event loop. Their callbacks run after
// the wait, outside the loop's own dispatch, so that a callback may start a nested wait.
class ReadySources {
public:
    void mark(EventLoop::SourceId id) {
        if (std::find(ids_.begin(), ids_.end(), id) == ids_.end())
            ids_.push_back(id);
    }
    void forget(EventLoop::SourceId id) { std::erase(ids_, id); }
    bool empty() const { return ids_.empty(); }
    // Calls `run` for each, in the order they became ready; sources that become ready
    // meanwhile wait for the next round.
    template <typename Run>
    void runAll(Run run) {
        for (EventLoop::SourceId id : std::exchange(ids_, {}))
            run(id);
    }

private:
    std::vector<EventLoop::SourceId> ids_;
};

} // namespace Galley
