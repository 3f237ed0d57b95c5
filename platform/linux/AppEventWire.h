#pragma once

#include <cstddef>

// The names under which applications exchange events on the session bus. Other programs
// implement this interface too: these texts never change.

namespace Platform::Linux::Wire {

inline constexpr const char* objectPath = "/org/galley/AppEvent";
inline constexpr const char* interface = "org.galley.AppEvent1";
inline constexpr const char* sendMethod = "Send";
inline constexpr const char* sendArguments = "sss"; // eventClass, eventID, text
inline constexpr const char* sendResult = "s";      // reply text, "" for none
inline constexpr const char* notHandledError = "org.galley.AppEvent1.Error.NotHandled";
// A handler that ran but returned a non-zero status; the message carries the status.
inline constexpr const char* failedError = "org.galley.AppEvent1.Error.Failed";
// The longest reply text a sender accepts: half the smallest message size a bus daemon
// allows by default. The bus itself lets 128 MiB through.
inline constexpr std::size_t maxReplyBytes = 16u * 1024 * 1024;

} // namespace Platform::Linux::Wire
