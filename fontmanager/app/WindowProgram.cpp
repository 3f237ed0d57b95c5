#include "fontmanager/app/WindowProgram.h"

#include "fontmanager/LauncherEntry.h"

#include <cerrno>
#include <cstring>
#include <iostream>
#include <unistd.h>

namespace Vellumine {

namespace {

const char* const programName = "vellumine-window";

} // namespace

std::vector<std::filesystem::path>
windowProgramCandidates(const std::filesystem::path& executable) {
    const auto folder = executable.parent_path();
    return {folder / programName, folder.parent_path() / "libexec" / "vellumine" / programName};
}

CliCommand windowProgramCommand(const std::string& command, std::vector<std::string> arguments) {
    return [command, arguments = std::move(arguments)](const CliArguments&, std::ostream& out,
                                                       std::ostream& errors) {
        std::vector<std::filesystem::path> candidates;
        try {
            candidates = windowProgramCandidates(ownExecutable());
        } catch (const std::filesystem::filesystem_error& error) {
            errors << "vellumine " << command << ": cannot tell where vellumine is installed ("
                   << error.code().message() << ")\n";
            return 1;
        }
        out.flush();
        errors.flush();
        std::vector<char*> argv{const_cast<char*>(programName)};
        for (const auto& argument : arguments)
            argv.push_back(const_cast<char*>(argument.c_str()));
        argv.push_back(nullptr);
        for (const auto& candidate : candidates) {
            ::execv(candidate.c_str(), argv.data());
        }
        const int error = errno;
        errors << "vellumine " << command << ": cannot start " << programName << " (looked for "
               << candidates.front().string() << " and " << candidates.back().string()
               << "): " << std::strerror(error) << "\n";
        return 1;
    };
}

} // namespace Vellumine
