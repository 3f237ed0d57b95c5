#pragma once

#include "host/loop/EventLoop.h"
#include "host/loop/MainLoop.h"
#include "sdk/HostTypes.h"

#include <functional>
#include <map>
#include <string>

class CIdleTask;

namespace Galley {

// The installed idle tasks, each on its own timer of the event loop. A task runs when its
// timer fires and the runtime is not holding idle tasks (a modal wait that asked to hold
// them); its answer schedules its next run. A task is never started while one of its runs
// is still on the stack (a task that opens a modal wait does not run inside it).
class IdleTasks {
public:
    using Runner = std::function<void(const std::string& what, const std::function<void()>& call)>;
    IdleTasks(EventLoop& loop, Runner runner) : loop_(loop), runner_(std::move(runner)) {}
    ~IdleTasks();

    void install(CIdleTask* task, uint32 delayMilliseconds);
    void uninstall(CIdleTask* task);
    bool isInstalled(const CIdleTask* task) const {
        return tasks_.count(const_cast<CIdleTask*>(task)) > 0;
    }

    // While held, due tasks wait; release runs the ones that came due.
    void hold() { ++holds_; }
    void release();
    std::size_t count() const { return tasks_.size(); }

private:
    struct Entry {
        EventLoop::SourceId timer = 0;
        bool due = false;
        bool running = false;
    };
    void fire(CIdleTask* task);

    EventLoop& loop_;
    Runner runner_;
    std::map<CIdleTask*, Entry> tasks_;
    int holds_ = 0;
};

} // namespace Galley
