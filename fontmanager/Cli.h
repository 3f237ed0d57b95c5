#pragma once

#include <functional>
#include <ostream>
#include <string>
#include <vector>

namespace Vellumine {

using CliArguments = std::vector<std::string>;
using CliCommand = std::function<int(const CliArguments&, std::ostream&, std::ostream&)>;

// The commands that need Qt and a display, which the program supplies (fontmanager/window/),
// so that the rest of the command line and the server stay free of Qt.
struct GuiCommands {
    CliCommand window;  // `vellumine window [--show PSNAME] [--container ID]`
    CliCommand openUrl; // `vellumine open-url URL`
};

// The `vellumine` command: serve, add, list, activate, deactivate, set, status, check,
// config, window, open-url and install-launcher, each with --help; --version. Returns the
// exit status: 0 on success, 1 when something asked for could not be done, 2 for a usage
// error, 3 when serve finds another server running.
int runCli(const CliArguments& arguments, std::ostream& out, std::ostream& errors,
           const GuiCommands& gui = {});

} // namespace Vellumine
