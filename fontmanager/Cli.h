#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace Vellumine {

// The `vellumine` command: serve, add, list, activate, deactivate, status and
// install-launcher, each with --help. Returns the exit status: 0 on success, 1 when
// something asked for could not be done, 2 for a usage error, 3 when serve finds another
// server running.
int runCli(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& errors);

} // namespace Vellumine
