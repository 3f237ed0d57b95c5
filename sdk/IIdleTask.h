#pragma once

#include "sdk/IPMUnknown.h"

// Idle tasks run on the host's main thread from its event loop, between other events, and
// also while a modal dialog waits (unless the wait asked to hold them).
class IdleTimer {
public:
    virtual ~IdleTimer() = default;
    // Milliseconds this run of the task may take before the host would rather it returned.
    virtual uint32 GetMillisecondsAvailable() const = 0;
};

// RunTask's answer when the task wants no further run: the host uninstalls it.
inline constexpr uint32 kEndOfTime = 0xFFFFFFFF;

class CIdleTask : public IPMUnknown {
public:
    // Runs the task once; the answer is the delay in milliseconds until its next run
    // (0: as soon as the loop is idle again; kEndOfTime: never again).
    virtual uint32 RunTask(uint32 appFlags, IdleTimer* timer) = 0;
    virtual const char* TaskName() = 0;

    // Schedules the task to run after `delayMilliseconds`; a task already installed is
    // rescheduled. A task is never started again while one of its runs is still on the stack.
    void InstallTask(uint32 delayMilliseconds);
    void UninstallTask();
    bool IsInstalled() const;
};
