#include "host/document/AtomicFileWriter.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <random>
#include <stdexcept>
#include <string_view>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace Galley {

namespace {

constexpr int kMaxLinkHops = 40; // as the kernel's own limit (ELOOP)
constexpr std::string_view kSavingInfix = ".saving-";
constexpr std::size_t kSuffixLength = 6;
constexpr int kNameAttempts = 100;

[[noreturn]] void fail(const std::string& what) {
    throw std::runtime_error(what + ": " + std::strerror(errno));
}

std::string folderOf(const std::string& path) {
    auto slash = path.rfind('/');
    return slash == std::string::npos ? "." : (slash == 0 ? "/" : path.substr(0, slash));
}

std::string baseName(const std::string& path) {
    auto slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

// The file a chain of symbolic links at `path` ends in (`path` itself when it is none).
std::string followLinks(const std::string& path) {
    std::string file = path;
    for (int hop = 0; hop <= kMaxLinkHops; ++hop) {
        struct stat info {};
        if (lstat(file.c_str(), &info) != 0 || !S_ISLNK(info.st_mode))
            return file;
        std::vector<char> target(static_cast<std::size_t>(info.st_size > 0 ? info.st_size : 4096) +
                                 1);
        const ssize_t length = readlink(file.c_str(), target.data(), target.size());
        if (length < 0 || static_cast<std::size_t>(length) >= target.size())
            fail("cannot read the symbolic link " + file);
        const std::string link(target.data(), static_cast<std::size_t>(length));
        file = link.front() == '/' ? link : folderOf(file) + "/" + link;
    }
    errno = ELOOP;
    fail("cannot follow the symbolic link " + path);
}

bool isSuffix(std::string_view text) {
    return text.size() == kSuffixLength && std::all_of(text.begin(), text.end(), [](char c) {
               return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9');
           });
}

// ".NAME.saving-XXXXXX", or that followed by ".YYYYYY", which saves that let the archive
// library write their temporary left beside it.
bool isTemporaryOf(std::string_view entry, const std::string& base) {
    const std::string prefix = "." + base + std::string(kSavingInfix);
    if (!entry.starts_with(prefix))
        return false;
    const std::string_view rest = entry.substr(prefix.size());
    return isSuffix(rest) ||
           (rest.size() == 2 * kSuffixLength + 1 && isSuffix(rest.substr(0, kSuffixLength)) &&
            rest[kSuffixLength] == '.' && isSuffix(rest.substr(kSuffixLength + 1)));
}

// Whether `path` still names the file open as `fd`.
bool names(const std::string& path, int fd) {
    struct stat opened {
    }, named{};
    return fstat(fd, &opened) == 0 && lstat(path.c_str(), &named) == 0 &&
           opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}

void removeStaleTemporaries(const std::string& folder, const std::string& base) {
    std::vector<std::string> stale;
    if (DIR* dir = opendir(folder.c_str())) {
        while (const dirent* entry = readdir(dir))
            if (isTemporaryOf(entry->d_name, base))
                stale.push_back(folder + "/" + entry->d_name);
        closedir(dir);
    }
    for (const std::string& path : stale) {
        const int fd =
            open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
        if (fd < 0)
            continue;
        struct stat info {};
        // A running save holds its temporary locked; anything but our own files is left.
        if (fstat(fd, &info) == 0 && S_ISREG(info.st_mode) && info.st_uid == geteuid() &&
            flock(fd, LOCK_EX | LOCK_NB) == 0 && names(path, fd))
            unlink(path.c_str());
        close(fd);
    }
}

std::string randomSuffix() {
    static const char alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
    static thread_local std::mt19937 random{std::random_device{}()};
    std::uniform_int_distribution<std::size_t> pick(0, sizeof alphabet - 2);
    std::string suffix(kSuffixLength, ' ');
    for (char& c : suffix)
        c = alphabet[pick(random)];
    return suffix;
}

// The temporary a save writes: locked while it lives, removed unless it was committed.
class Temporary {
public:
    Temporary(const std::string& folder, const std::string& base, mode_t mode) {
        for (int attempt = 0; attempt < kNameAttempts && fd_ < 0; ++attempt) {
            const std::string path =
                folder + "/." + base + std::string(kSavingInfix) + randomSuffix();
            const int fd =
                open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode);
            if (fd < 0 && errno != EEXIST)
                fail("cannot create a temporary file in " + folder);
            // Another save's clean-up may take a temporary between its creation and its
            // lock: then it is gone, and the next name is tried.
            if (fd >= 0 && flock(fd, LOCK_EX | LOCK_NB) == 0 && names(path, fd)) {
                fd_ = fd;
                path_ = path;
            } else if (fd >= 0) {
                close(fd);
            }
        }
        if (fd_ < 0)
            throw std::runtime_error("cannot create a temporary file in " + folder);
    }
    ~Temporary() {
        close(fd_);
        if (!committed_)
            unlink(path_.c_str());
    }
    Temporary(const Temporary&) = delete;
    Temporary& operator=(const Temporary&) = delete;

    void write(const std::string& bytes) {
        for (std::size_t done = 0; done < bytes.size();) {
            const ssize_t written = ::write(fd_, bytes.data() + done, bytes.size() - done);
            if (written < 0 && errno != EINTR)
                fail("cannot write " + path_);
            done += written > 0 ? static_cast<std::size_t>(written) : 0;
        }
    }
    // Owner and group first: changing them clears set-user-ID bits, which the mode then
    // brings back. A user may not give a file away, nor to a group they are not in: then
    // the new file is theirs, which is what any editor's save gives too.
    void takeOwnerAndModeOf(const struct stat& old) {
        if (fchown(fd_, old.st_uid, old.st_gid) != 0)
            (void)fchown(fd_, static_cast<uid_t>(-1), old.st_gid);
        if (fchmod(fd_, old.st_mode & 07777) != 0)
            fail("cannot set the mode of " + path_);
    }
    void commit(const std::string& file) {
        if (fsync(fd_) != 0)
            fail("cannot sync " + path_);
        if (rename(path_.c_str(), file.c_str()) != 0)
            fail("cannot replace the file");
        committed_ = true;
    }

private:
    int fd_ = -1;
    std::string path_;
    bool committed_ = false;
};

void syncFolder(const std::string& folder) {
    const int fd = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd >= 0) {
        fsync(fd);
        close(fd);
    }
}

} // namespace

std::string replaceFileAtomically(const std::string& path, const std::string& bytes) {
    const std::string file = followLinks(path);
    const std::string folder = folderOf(file);
    const std::string base = baseName(file);
    struct stat old {};
    const bool exists = lstat(file.c_str(), &old) == 0;
    if (!exists && errno != ENOENT)
        fail("cannot look at " + file);
    if (exists && !S_ISREG(old.st_mode))
        throw std::runtime_error(file + " is not a regular file");
    removeStaleTemporaries(folder, base);
    // A new file's mode is what open(2) makes of 0666 with the umask; an existing file's
    // contents stay private until its own mode is set.
    Temporary temporary(folder, base, exists ? 0600 : 0666);
    temporary.write(bytes);
    if (exists)
        temporary.takeOwnerAndModeOf(old);
    temporary.commit(file);
    syncFolder(folder);
    return file;
}

} // namespace Galley
