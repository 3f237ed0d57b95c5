#pragma once

// What the test plug-in records, read by the runtime tests through the exported function
// GalleyTestPluginProbe (the tests find it with dlsym in the loaded library).

#include <string>
#include <vector>

class IPMUnknown;
class ISession;

struct TestPluginProbe {
    std::vector<std::string> events;   // what was called, in order
    std::vector<unsigned> idleDelays;  // what the idle task answers, run by run
    ISession* sessionSeen = nullptr;   // gSession as the plug-in sees it
    unsigned ticksSeen = 0;            // TickCount() as the plug-in sees it
    const void* clockSeen = nullptr;   // Platform::services().clock as the plug-in sees it
    int idleRunsBeforeClosingDialog = -1; // >= 0: the idle task closes the front dialog then
    bool throwInResponder = false;
    int idleRuns = 0;
};

extern "C" TestPluginProbe* GalleyTestPluginProbe();

// Identifiers of the test plug-in.
inline constexpr unsigned kTestPluginPrefix = 0x7E5700;
inline constexpr unsigned kTestDialogRsrc = 100;
inline constexpr unsigned kTestRowRsrc = 101;
inline constexpr unsigned kTestSessionObserverIID = 0x7E5709;
inline constexpr unsigned kTestActionProbe = 0x7E5701;
inline constexpr unsigned kTestActionModal = 0x7E5702;
inline constexpr unsigned kTestButtonWidget = 0x7E5710;
inline constexpr unsigned kTestTreeWidget = 0x7E5711;
inline constexpr unsigned kTestListWidget = 0x7E5712;
inline constexpr unsigned kTestLabelWidget = 0x7E5713;
inline constexpr unsigned kTestProgressWidget = 0x7E5714;
