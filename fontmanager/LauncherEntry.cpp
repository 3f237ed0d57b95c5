#include "fontmanager/LauncherEntry.h"

#include "fontmanager/LauncherTemplate.h"

#include <fstream>

namespace Vellumine {

namespace {

// An Exec argument: quoted when it holds a reserved character, with the quoting's own
// escapes, then with the backslashes and percent signs that the entry's value syntax
// escapes once more.
std::string execArgument(const std::string& argument) {
    const std::string reserved = " \t\n\"'\\><~|&;$*?#()`";
    std::string quoted = argument;
    if (argument.find_first_of(reserved) != std::string::npos) {
        quoted = "\"";
        for (char c : argument) {
            if (c == '"' || c == '`' || c == '$' || c == '\\') {
                quoted += '\\';
            }
            quoted += c;
        }
        quoted += "\"";
    }
    std::string escaped;
    for (char c : quoted) {
        if (c == '\\') {
            escaped += "\\\\";
        } else if (c == '%') {
            escaped += "%%";
        } else {
            escaped += c;
        }
    }
    return escaped;
}

} // namespace

std::string launcherEntryText(const std::filesystem::path& executable) {
    std::string text = launcherTemplate;
    const std::string placeholder = "@VELLUMINE_EXEC@";
    const auto at = text.find(placeholder);
    if (at != std::string::npos) {
        text.replace(at, placeholder.size(), execArgument(executable.string()));
    }
    return text;
}

std::filesystem::path installLauncher(const std::filesystem::path& dataHome,
                                      const std::filesystem::path& executable) {
    const auto folder = dataHome / "applications";
    std::filesystem::create_directories(folder);
    const auto file = folder / (launcherIdentifier + ".desktop");
    const auto temporary = folder / (launcherIdentifier + ".desktop.tmp");
    {
        std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
        out << launcherEntryText(executable);
        if (!out.flush()) {
            throw std::filesystem::filesystem_error("cannot write", temporary,
                                                    std::make_error_code(std::errc::io_error));
        }
    }
    std::filesystem::rename(temporary, file);
    return file;
}

std::filesystem::path ownExecutable() {
    return std::filesystem::read_symlink("/proc/self/exe");
}

} // namespace Vellumine
