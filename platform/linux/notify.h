#pragma once

// Named notifications between processes of one user: a poster increments a shared
// counter, a registration remembers the last value it saw and a check reports whether it
// changed since.
//
// State lives in $XDG_RUNTIME_DIR/notify/ (when unset or empty: /tmp/notify-<uid>/), a
// folder of mode 0700 that is created when missing and refused when it is not a real
// folder, belongs to another user or can be written by group or others. Each name has one
// file there, the name with every byte outside A-Za-z0-9._- written as %XX (upper-case
// hex); the file holds one unsigned 64-bit counter in native byte order at offset 0.
//
// Any process of the user can write that file, so nothing here trusts its size or kind:
// posters increment the counter under an exclusive flock(2) of the file by reading and
// writing it (a file shorter than one counter counts as 0 and is extended), readers read
// it with pread(2) through the descriptor they opened at registration, and a file shorter
// than one counter reads as a value of its own, so that truncating it is reported once as
// a change. No mapping is ever made of the file: a mapping of a file that another process
// shrinks kills its reader with SIGBUS. A name whose file is not a regular file (a FIFO,
// a folder, a symbolic link) is refused with NOTIFY_STATUS_NOT_A_FILE.
//
// All functions are safe to call from several threads. notify_check costs one pread of
// eight bytes, so a watcher may poll it every millisecond.

#ifdef __cplusplus
extern "C" {
#endif

enum {
    NOTIFY_STATUS_OK = 0,
    NOTIFY_STATUS_INVALID_NAME = 1,   // null, empty, or too long once encoded
    NOTIFY_STATUS_INVALID_TOKEN = 2,  // not a live registration
    NOTIFY_STATUS_INVALID_FOLDER = 3, // the state folder is missing and cannot be made, or refused
    NOTIFY_STATUS_FAILED = 4, // the name's file could not be opened, read or written (errno)
    NOTIFY_STATUS_INVALID_ARGUMENT = 5,
    NOTIFY_STATUS_NOT_A_FILE = 6 // the name's file is a FIFO, folder, link or other non-file
};

int notify_post(const char* name);
int notify_register_check(const char* name, int* token);
int notify_check(int token, int* check);
int notify_cancel(int token);

#ifdef __cplusplus
}
#endif
