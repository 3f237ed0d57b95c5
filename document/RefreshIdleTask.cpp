#include "document/RefreshIdleTask.h"

#include "document/IDFontSuite.h"

namespace VLM {

uint32 RefreshIdleTask::RunTask(uint32, IdleTimer*) {
    IDFontSuite::getFontSuite(false)->UpdateFontSystem();
    return periodMilliseconds;
}

} // namespace VLM
