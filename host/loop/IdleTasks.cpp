#include "host/loop/IdleTasks.h"

#include "sdk/IIdleTask.h"

#include <vector>

namespace Galley {

namespace {

class FrameTimer : public IdleTimer {
public:
    uint32 GetMillisecondsAvailable() const override { return 16; }
};

} // namespace

IdleTasks::~IdleTasks() {
    for (auto& [task, entry] : tasks_)
        loop_.remove(entry.timer);
}

void IdleTasks::install(CIdleTask* task, uint32 delayMilliseconds) {
    if (!task)
        return;
    auto found = tasks_.find(task);
    if (found == tasks_.end()) {
        Entry entry;
        entry.timer = loop_.addTimer([this, task] { fire(task); });
        found = tasks_.emplace(task, entry).first;
    }
    found->second.due = false;
    loop_.armTimer(found->second.timer, static_cast<std::uint64_t>(delayMilliseconds) * 1000u);
}

void IdleTasks::uninstall(CIdleTask* task) {
    auto found = tasks_.find(task);
    if (found == tasks_.end())
        return;
    loop_.remove(found->second.timer);
    tasks_.erase(found);
}

void IdleTasks::release() {
    if (holds_ > 0 && --holds_ == 0) {
        std::vector<CIdleTask*> due;
        for (auto& [task, entry] : tasks_)
            if (entry.due)
                due.push_back(task);
        for (CIdleTask* task : due)
            fire(task);
    }
}

void IdleTasks::fire(CIdleTask* task) {
    auto found = tasks_.find(task);
    if (found == tasks_.end())
        return;
    Entry& entry = found->second;
    if (holds_ > 0 || entry.running) {
        entry.due = true;
        return;
    }
    entry.due = false;
    entry.running = true;
    uint32 next = kEndOfTime;
    FrameTimer timer;
    runner_(std::string("the idle task ") + "\"" + task->TaskName() + "\"",
            [&] { next = task->RunTask(0, &timer); });
    // The task may have uninstalled (or reinstalled) itself while it ran.
    found = tasks_.find(task);
    if (found == tasks_.end())
        return;
    found->second.running = false;
    if (next == kEndOfTime)
        uninstall(task);
    else
        loop_.armTimer(found->second.timer, static_cast<std::uint64_t>(next) * 1000u);
}

} // namespace Galley
