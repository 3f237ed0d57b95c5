#include "platform/linux/notify.h"

#include "platform/linux/NotifyFolder.h"

#include <cstdint>
#include <fcntl.h>
#include <mutex>
#include <string>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#include <unordered_map>

namespace {

using Counter = std::uint64_t;

struct Registration {
    const Counter* counter = nullptr;
    Counter lastSeen = 0;
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

// Opens (creating when needed) the counter file of `name` and maps its first word.
int mapCounter(const char* name, int protection, void*& mapping) {
    if (name == nullptr) {
        return NOTIFY_STATUS_INVALID_NAME;
    }
    std::string file = Platform::Linux::NotifyFolder::fileName(name);
    if (file.empty()) {
        return NOTIFY_STATUS_INVALID_NAME;
    }
    std::string why;
    int folder = Platform::Linux::NotifyFolder::open(Platform::Linux::NotifyFolder::path(), why);
    if (folder < 0) {
        return NOTIFY_STATUS_INVALID_FOLDER;
    }
    int fd = openat(folder, file.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600);
    close(folder);
    if (fd < 0) {
        return NOTIFY_STATUS_FAILED;
    }
    struct stat info {};
    bool usable = fstat(fd, &info) == 0 && S_ISREG(info.st_mode);
    // Growing a fresh file to one word is harmless when several processes race to do it:
    // extending to the same size never clears a count another one already wrote.
    if (usable && info.st_size < static_cast<off_t>(sizeof(Counter))) {
        usable = ftruncate(fd, sizeof(Counter)) == 0;
    }
    void* mapped =
        usable ? mmap(nullptr, sizeof(Counter), protection, MAP_SHARED, fd, 0) : MAP_FAILED;
    close(fd);
    if (mapped == MAP_FAILED) {
        return NOTIFY_STATUS_FAILED;
    }
    mapping = mapped;
    return NOTIFY_STATUS_OK;
}

} // namespace

extern "C" {

int notify_post(const char* name) {
    void* mapping = nullptr;
    int status = mapCounter(name, PROT_READ | PROT_WRITE, mapping);
    if (status != NOTIFY_STATUS_OK) {
        return status;
    }
    __atomic_fetch_add(static_cast<Counter*>(mapping), 1, __ATOMIC_SEQ_CST);
    munmap(mapping, sizeof(Counter));
    return NOTIFY_STATUS_OK;
}

int notify_register_check(const char* name, int* token) {
    if (token == nullptr) {
        return NOTIFY_STATUS_INVALID_ARGUMENT;
    }
    void* mapping = nullptr;
    int status = mapCounter(name, PROT_READ, mapping);
    if (status != NOTIFY_STATUS_OK) {
        return status;
    }
    Registration registration;
    registration.counter = static_cast<const Counter*>(mapping);
    registration.lastSeen = __atomic_load_n(registration.counter, __ATOMIC_ACQUIRE);
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
    Counter now = __atomic_load_n(registration.counter, __ATOMIC_ACQUIRE);
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
    munmap(const_cast<Counter*>(found->second.counter), sizeof(Counter));
    table.entries.erase(found);
    return NOTIFY_STATUS_OK;
}

} // extern "C"
