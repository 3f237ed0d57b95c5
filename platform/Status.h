#pragma once

namespace Platform {

// Results of platform operations, in the style of the system error codes the plug-in's
// logic was built around: 0 is success, every failure a distinct negative number.
namespace Status {
constexpr int ok = 0;
constexpr int invalidArgument = -50;
constexpr int notRunning = -600;      // no process owns the addressed application's name
constexpr int notHandled = -1708;     // the receiver installed no handler for the event
constexpr int timeout = -1712;        // no reply within the send timeout
constexpr int transportError = -1750; // any other failure of the message bus
constexpr int replyTooLarge = -1751;  // the reply passed the size any application may send
constexpr int notFound = -10814;      // no launcher with that identifier is installed
constexpr int launchFailed = -10810;  // the launcher was found but could not be started
constexpr int permissionDenied = -5000;
} // namespace Status

} // namespace Platform
