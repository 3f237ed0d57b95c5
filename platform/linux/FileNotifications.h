#pragma once

#include "platform/NamedNotifications.h"

namespace Platform::Linux {

// Named notifications over the shared counter files of notify.h. Statuses are those of
// notify.h (0 on success). Stateless: every instance sees the same registrations.
class FileNotifications : public Platform::NamedNotifications {
public:
    int post(const std::string& name) override;
    int registerCheck(const std::string& name, int& token) override;
    int check(int token, int& check) override;
    int cancel(int token) override;
};

} // namespace Platform::Linux
