#include "platform/linux/notify.h"

#include "platform/linux/NotifyFolder.h"

#include <cerrno>
#include <cstdint>
#include <fcntl.h>
#include <mutex>
#include <optional>
#include <string>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <unordered_map>

namespace {

using Counter = std::uint64_t;
// What a reader sees: the counter, or nothing while the file is shorter than one counter.
using Reading = std::optional<Counter>;

struct Registration {
    int fd = -1;
    Reading lastSeen;
    bool fresh = true;
};

struct RegistrationTable {
    std::mutex mutex;
    std::unordered_map<int, Registration> entries;
    int nextToken = 1;
};

RegistrationTable& registrations() {
    // Never destroyed: a watcher thread may still check while static objects go away.
    static auto* table = new RegistrationTable;
    return *table;
}

// Closes a descriptor without letting close() change the errno a caller reports.
void closeKeepingErrno(int fd) {
    const int saved = errno;
    close(fd);
    errno = saved;
}

// Opens (creating when needed) the counter file of `name`. O_NONBLOCK keeps a FIFO planted
// under the name from blocking the open; the file is then refused for what it is.
int openCounter(const char* name, int access, int& fd) {
    if (name == nullptr) {
        return NOTIFY_STATUS_INVALID_NAME;
    }
    const std::string file = Platform::Linux::NotifyFolder::fileName(name);
    if (file.empty()) {
        return NOTIFY_STATUS_INVALID_NAME;
    }
    std::string why;
    const int folder =
        Platform::Linux::NotifyFolder::open(Platform::Linux::NotifyFolder::path(), why);
    if (folder < 0) {
        return NOTIFY_STATUS_INVALID_FOLDER;
    }
    fd = openat(folder, file.c_str(),
                access | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0600);
    closeKeepingErrno(folder);
    if (fd < 0) {
        // A symbolic link (O_NOFOLLOW), a folder or a socket where the file should be.
        return errno == ELOOP || errno == EISDIR || errno == ENXIO ? NOTIFY_STATUS_NOT_A_FILE
                                                                   : NOTIFY_STATUS_FAILED;
    }
    struct stat info {};
    const int status = fstat(fd, &info) != 0    ? NOTIFY_STATUS_FAILED
                       : !S_ISREG(info.st_mode) ? NOTIFY_STATUS_NOT_A_FILE
                                                : NOTIFY_STATUS_OK;
    if (status != NOTIFY_STATUS_OK) {
        closeKeepingErrno(fd);
        fd = -1;
    }
    return status;
}

Reading readCounter(int fd) {
    Counter value = 0;
    ssize_t got = 0;
    do {
        got = pread(fd, &value, sizeof value, 0);
    } while (got < 0 && errno == EINTR);
    return got == static_cast<ssize_t>(sizeof value) ? Reading(value) : std::nullopt;
}

bool writeCounter(int fd, Counter value) {
    ssize_t put = 0;
    do {
        put = pwrite(fd, &value, sizeof value, 0);
    } while (put < 0 && errno == EINTR);
    return put == static_cast<ssize_t>(sizeof value);
}

bool lockExclusively(int fd) {
    int r = 0;
    do {
        r = flock(fd, LOCK_EX);
    } while (r != 0 && errno == EINTR);
    return r == 0;
}

} // namespace

extern "C" {

int notify_post(const char* name) {
    int fd = -1;
    const int status = openCounter(name, O_RDWR, fd);
    if (status != NOTIFY_STATUS_OK) {
        return status;
    }
    // The lock makes read, add and write one step among posters; closing drops it.
    const bool posted = lockExclusively(fd) && writeCounter(fd, readCounter(fd).value_or(0) + 1);
    closeKeepingErrno(fd);
    return posted ? NOTIFY_STATUS_OK : NOTIFY_STATUS_FAILED;
}

int notify_register_check(const char* name, int* token) {
    if (token == nullptr) {
        return NOTIFY_STATUS_INVALID_ARGUMENT;
    }
    Registration registration;
    const int status = openCounter(name, O_RDONLY, registration.fd);
    if (status != NOTIFY_STATUS_OK) {
        return status;
    }
    registration.lastSeen = readCounter(registration.fd);
    auto& table = registrations();
    std::lock_guard lock(table.mutex);
    *token = table.nextToken++;
    table.entries.emplace(*token, registration);
    return NOTIFY_STATUS_OK;
}

int notify_check(int token, int* check) {
    if (check == nullptr) {
        return NOTIFY_STATUS_INVALID_ARGUMENT;
    }
    auto& table = registrations();
    std::lock_guard lock(table.mutex);
    auto found = table.entries.find(token);
    if (found == table.entries.end()) {
        return NOTIFY_STATUS_INVALID_TOKEN;
    }
    Registration& registration = found->second;
    const Reading now = readCounter(registration.fd);
    *check = (registration.fresh || now != registration.lastSeen) ? 1 : 0;
    registration.fresh = false;
    registration.lastSeen = now;
    return NOTIFY_STATUS_OK;
}

int notify_cancel(int token) {
    auto& table = registrations();
    std::lock_guard lock(table.mutex);
    auto found = table.entries.find(token);
    if (found == table.entries.end()) {
        return NOTIFY_STATUS_INVALID_TOKEN;
    }
    close(found->second.fd);
    table.entries.erase(found);
    return NOTIFY_STATUS_OK;
}

} // extern "C"
