#include "platform/linux/FileNotifications.h"

#include "platform/linux/notify.h"

namespace Platform::Linux {

namespace {

// A name with an embedded NUL would silently become a different, shorter name.
bool representable(const std::string& name) {
    return name.find('\0') == std::string::npos;
}

} // namespace

int FileNotifications::post(const std::string& name) {
    return representable(name) ? notify_post(name.c_str()) : NOTIFY_STATUS_INVALID_NAME;
}

int FileNotifications::registerCheck(const std::string& name, int& token) {
    return representable(name) ? notify_register_check(name.c_str(), &token)
                               : NOTIFY_STATUS_INVALID_NAME;
}

int FileNotifications::check(int token, int& check) {
    return notify_check(token, &check);
}

int FileNotifications::cancel(int token) {
    return notify_cancel(token);
}

} // namespace Platform::Linux
