#pragma once

#include <string>

// The words of the conversation with the font manager: who we are in requests, how the
// font manager is addressed, and the names under which it is found and heard.
namespace VLM {

// Written into every request that asks the font manager to answer us.
extern const std::string targetApplication; // "InDn", our application signature
extern const std::string targetClass;       // "VLM4", the event class it posts back to us
extern const std::string versionNumber;     // "1.00", the protocol version we announce

// The protocol version a reply must announce at least.
constexpr unsigned long neededProtocolMajor = 2;
constexpr unsigned long neededProtocolMinor = 0;

// The font manager as the platform knows it.
extern const std::string vellumineSignature;  // "VLMQ"
extern const std::string vellumineIdentifier; // "org.vellumine.Vellumine"
extern const std::string libraryChangedNotification;

// Events: what we send, and the two IDs of its class that tell us its fonts changed.
extern const std::string requestEventClass; // "VLMQ"
extern const std::string requestEventID;    // "****"
extern const std::string fontSetChangedEventID;
extern const std::string fontFileSetChangedEventID;

// The text every listener receives when the font manager's fonts changed.
extern const std::string fontChangedCommand;

} // namespace VLM
