#include "foundation/Logger.h"

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <mutex>

namespace {

bool enabledFromEnvironment() {
    const char* value = std::getenv("VELLUMINE_LOG");
    return value != nullptr && *value != '\0' && std::strcmp(value, "0") != 0;
}

std::atomic<bool>& enabledFlag() {
    static std::atomic<bool> flag{enabledFromEnvironment()};
    return flag;
}

std::string timestamp() {
    using namespace std::chrono;
    const auto now = system_clock::now();
    const std::time_t seconds = system_clock::to_time_t(now);
    const auto millis = duration_cast<milliseconds>(now.time_since_epoch()).count() % 1000;
    std::tm parts{};
    gmtime_r(&seconds, &parts);
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d.%03dZ", parts.tm_year + 1900,
                  parts.tm_mon + 1, parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec,
                  static_cast<int>(millis));
    return text;
}

} // namespace

void Logger::log(const std::string& component, const std::string& text, int /*level*/) {
    if (!isEnabled()) {
        return;
    }
    static std::mutex lineLock; // keeps lines of concurrent threads whole
    const std::string line = timestamp() + " [" + component + "] " + text + "\n";
    std::lock_guard<std::mutex> guard(lineLock);
    std::fwrite(line.data(), 1, line.size(), stderr);
}

bool Logger::isEnabled() {
    return enabledFlag().load(std::memory_order_relaxed);
}

void Logger::setEnabled(bool enabled) {
    enabledFlag().store(enabled, std::memory_order_relaxed);
}
