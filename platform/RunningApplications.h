#pragma once

#include <string>
#include <sys/types.h>
#include <vector>

namespace Platform {

struct RunningApplication {
    std::string signature; // four-character application signature, e.g. "VLMQ"
    std::string name;      // the application's well-known name, e.g. "org.vellumine.Vellumine"
    pid_t processID = 0;
};

// The applications that run now, in a stable order.
class RunningApplications {
public:
    virtual ~RunningApplications() = default;
    virtual int list(std::vector<RunningApplication>& applications) = 0;
};

} // namespace Platform
