#pragma once

#include "fontmanager/Cli.h"

#include <filesystem>
#include <string>
#include <vector>

namespace Vellumine {

// vellumine's window lives in a program of its own, vellumine-window, so that vellumine
// itself loads no Qt: the server an application launches starts in a few milliseconds
// instead of first mapping the toolkit's libraries.
//
// Where vellumine-window is looked for: beside `executable` (the build tree), then in
// ../libexec/vellumine/ from it (an installed tree, wherever it was moved).
std::vector<std::filesystem::path> windowProgramCandidates(const std::filesystem::path& executable);

// A GUI command that replaces this process with vellumine-window, given `arguments` (this
// process's own, from argv[1] on); it returns only when that program cannot be started,
// after saying so.
CliCommand windowProgramCommand(const std::string& command, std::vector<std::string> arguments);

} // namespace Vellumine
