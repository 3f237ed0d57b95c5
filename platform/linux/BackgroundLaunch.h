#pragma once

#include <string>
#include <vector>

namespace Platform::Linux {

// Starts argv[0] (searched in PATH when it holds no '/') detached: in a session of its own,
// standard streams on /dev/null, no descriptor of ours inherited, signals at their
// defaults, and reparented away from the caller at once (double fork), so that no zombie
// is left behind and the caller keeps the foreground. Returns when the program has been
// executed or failed to be: Status::ok, Status::invalidArgument for an empty argv,
// Status::launchFailed with `error` set otherwise.
int launchDetached(const std::vector<std::string>& argv, std::string& error);

// argv[0] resolved the way launchDetached resolves it; empty when not found or not
// executable.
std::string findProgram(const std::string& program);

} // namespace Platform::Linux
