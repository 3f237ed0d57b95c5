#pragma once

// Named notifications between processes of one user: a poster increments a shared
// counter, a registration remembers the last value it saw and a check reports whether it
// changed since.
//
// State lives in $XDG_RUNTIME_DIR/notify/ (when unset or empty: /tmp/notify-<uid>/), a
// folder of mode 0700 that is created when missing and refused when it is not a real
// folder, belongs to another user or can be written by group or others. Each name has one
// file there, the name with every byte outside A-Za-z0-9._- written as %XX (upper-case
// hex); the file holds one unsigned 64-bit counter in native byte order at offset 0, which
// posters increment atomically through a shared mapping.
//
// All functions are safe to call from several threads. notify_check touches only the
// mapped counter: no system call, so a watcher may poll it every millisecond.

#ifdef __cplusplus
extern "C" {
#endif

enum {
    NOTIFY_STATUS_OK = 0,
    NOTIFY_STATUS_INVALID_NAME = 1,   // null, empty, or too long once encoded
    NOTIFY_STATUS_INVALID_TOKEN = 2,  // not a live registration
    NOTIFY_STATUS_INVALID_FOLDER = 3, // the state folder is missing and cannot be made, or refused
    NOTIFY_STATUS_FAILED = 4,         // the name's file could not be opened or mapped
    NOTIFY_STATUS_INVALID_ARGUMENT = 5
};

int notify_post(const char* name);
int notify_register_check(const char* name, int* token);
int notify_check(int token, int* check);
int notify_cancel(int token);

#ifdef __cplusplus
}
#endif
