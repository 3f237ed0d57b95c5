#pragma once

#include <string>

namespace Platform {

// Process-wide named notifications ("something changed"), polled by registration.
// Every operation returns 0 on success and a non-zero status otherwise.
class NamedNotifications {
public:
    virtual ~NamedNotifications() = default;

    virtual int post(const std::string& name) = 0;
    virtual int registerCheck(const std::string& name, int& token) = 0;
    // Sets `check` non-zero when the name was posted since the previous check; the first
    // check after registration always reports non-zero.
    virtual int check(int token, int& check) = 0;
    virtual int cancel(int token) = 0;
};

} // namespace Platform
