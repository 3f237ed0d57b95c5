#pragma once

#include <string>

// The state folder of named notifications and the file names in it (see notify.h).
namespace Platform::Linux::NotifyFolder {

// $XDG_RUNTIME_DIR/notify, or /tmp/notify-<uid> when XDG_RUNTIME_DIR is unset or empty.
std::string path();

// Opens the folder as a directory descriptor (O_DIRECTORY | O_CLOEXEC), creating it with
// mode 0700 when missing. Returns -1 with `why` set when it cannot be made or is refused:
// a symbolic link or not a folder, owned by another user, or writable by group or others.
int open(const std::string& folder, std::string& why);

// The file name for a notification name: bytes outside A-Za-z0-9._- become %XX. Empty
// when the name is empty or the encoded name does not fit a file name; "." and ".." are
// encoded too, so no name ever points outside the folder.
std::string fileName(const std::string& name);

// Says why an operation on the notification `name` failed with `status` (a
// NOTIFY_STATUS_*), for a message to the user: the refused folder and why, the file that is
// no counter file and what it is instead, or the system's error. Call it right after the
// failing call, while errno still tells.
std::string describeFailure(const std::string& name, int status);

} // namespace Platform::Linux::NotifyFolder
