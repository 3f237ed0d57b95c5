#pragma once

#include "sdk/IIdleTask.h"

namespace VLM {

// Every five seconds, lets the host look at its font system again, so that fonts the font
// manager activated become usable even where no font-folder watch tells the host at once.
//
// It runs only while the activation progress dialog is open: that dialog installs it when
// it is shown and removes it when it closes. The refresh may hold the main thread for up to
// 200 ticks; during the progress dialog the user can click nothing else, so the wait costs
// them nothing, and while the fonts dialog or no dialog is open the task is not installed.
class RefreshIdleTask : public CIdleTask {
public:
    static constexpr uint32 periodMilliseconds = 5000;
    uint32 RunTask(uint32 appFlags, IdleTimer* timer) override;
    const char* TaskName() override { return "WaitingCloseThread"; }
};

} // namespace VLM
