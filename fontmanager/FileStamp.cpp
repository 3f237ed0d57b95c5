#include "fontmanager/FileStamp.h"

#include <sys/stat.h>

#include <ctime>

namespace Vellumine {

namespace {

bool earlier(const std::timespec& a, const std::timespec& b) {
    return a.tv_sec != b.tv_sec ? a.tv_sec < b.tv_sec : a.tv_nsec < b.tv_nsec;
}

std::string text(const std::timespec& time) {
    return std::to_string(time.tv_sec) + "." + std::to_string(time.tv_nsec);
}

} // namespace

std::string fileStamp(const std::filesystem::path& file) {
    // Taken first: a change after it carries a time that is not earlier.
    std::timespec now{};
    clock_gettime(CLOCK_REALTIME_COARSE, &now);
    struct stat info {};
    if (::stat(file.c_str(), &info) != 0 || !earlier(info.st_ctim, now)) {
        return {};
    }
    return std::to_string(info.st_dev) + ":" + std::to_string(info.st_ino) + ":" +
           std::to_string(info.st_size) + ":" + text(info.st_mtim) + ":" + text(info.st_ctim);
}

} // namespace Vellumine
