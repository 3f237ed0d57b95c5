#include "platform/linux/NotifyFolder.h"

#include "platform/linux/notify.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Platform::Linux::NotifyFolder {

namespace {

constexpr std::size_t maxFileNameLength = 255;

bool isPlain(unsigned char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '.' ||
           c == '_' || c == '-';
}

// What stands where a counter file should: "a FIFO", "a folder"...
std::string kindOf(const std::string& file) {
    struct stat info {};
    if (lstat(file.c_str(), &info) != 0) {
        return "not a regular file";
    }
    switch (info.st_mode & S_IFMT) {
    case S_IFIFO:
        return "a FIFO";
    case S_IFDIR:
        return "a folder";
    case S_IFLNK:
        return "a symbolic link";
    case S_IFSOCK:
        return "a socket";
    case S_IFCHR:
    case S_IFBLK:
        return "a device";
    default:
        return "not a regular file";
    }
}

} // namespace

std::string path() {
    const char* runtime = std::getenv("XDG_RUNTIME_DIR");
    if (runtime != nullptr && *runtime != '\0') {
        return std::string(runtime) + "/notify";
    }
    return "/tmp/notify-" + std::to_string(geteuid());
}

int open(const std::string& folder, std::string& why) {
    if (mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST) {
        why = "cannot create " + folder;
        return -1;
    }
    // O_NOFOLLOW: a link planted in a shared /tmp must not redirect us elsewhere. The
    // checks then run on what was opened, not on the name.
    int fd = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0) {
        why = folder + " is not a folder";
        return -1;
    }
    struct stat info {};
    if (fstat(fd, &info) != 0 || !S_ISDIR(info.st_mode)) {
        why = folder + " is not a folder";
    } else if (info.st_uid != geteuid()) {
        why = folder + " belongs to another user";
    } else if ((info.st_mode & (S_IWGRP | S_IWOTH)) != 0) {
        why = folder + " is writable by others";
    } else {
        return fd;
    }
    ::close(fd);
    return -1;
}

std::string fileName(const std::string& name) {
    static const char hex[] = "0123456789ABCDEF";
    if (name.empty()) {
        return {};
    }
    const bool dotsOnly = name == "." || name == "..";
    std::string encoded;
    for (unsigned char c : name) {
        if (isPlain(c) && !(dotsOnly && c == '.')) {
            encoded += static_cast<char>(c);
        } else {
            encoded += '%';
            encoded += hex[c >> 4];
            encoded += hex[c & 0x0F];
        }
    }
    return encoded.size() <= maxFileNameLength ? encoded : std::string();
}

std::string describeFailure(const std::string& name, int status) {
    const int error = errno;
    const std::string file = path() + "/" + fileName(name);
    switch (status) {
    case NOTIFY_STATUS_INVALID_NAME:
        return "invalid notification name \"" + name + "\"";
    case NOTIFY_STATUS_INVALID_FOLDER: {
        std::string why;
        const int fd = open(path(), why);
        if (fd >= 0) {
            ::close(fd);
        }
        return "the notification folder is refused: " + why;
    }
    case NOTIFY_STATUS_NOT_A_FILE:
        return file + " is " + kindOf(file) + ", not a counter file; remove it to use \"" + name +
               "\"";
    default:
        return file + ": " + std::strerror(error);
    }
}

} // namespace Platform::Linux::NotifyFolder
