#include "platform/linux/DesktopEntryLaunchers.h"

#include "platform/Status.h"
#include "platform/linux/BackgroundLaunch.h"
#include "platform/linux/DesktopEntry.h"

#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>
#include <sys/stat.h>

namespace Platform::Linux {

namespace {

constexpr off_t maxEntrySize = 1 << 20;

std::string environmentOr(const char* name, const std::string& fallback) {
    const char* value = std::getenv(name);
    return value && *value ? std::string(value) : fallback;
}

bool validIdentifier(const std::string& identifier) {
    return !identifier.empty() && identifier.front() != '.' &&
           identifier.find('/') == std::string::npos && identifier.find('\0') == std::string::npos;
}

bool isRegularFile(const std::string& path, off_t& size) {
    struct stat info {};
    if (stat(path.c_str(), &info) != 0 || !S_ISREG(info.st_mode)) {
        return false;
    }
    size = info.st_size;
    return true;
}

std::string value(const std::map<std::string, std::string>& keys, const std::string& key) {
    auto found = keys.find(key);
    return found == keys.end() ? std::string() : DesktopEntry::unescapeString(found->second);
}

} // namespace

std::vector<std::string> DesktopEntryLaunchers::applicationFolders() {
    std::vector<std::string> bases;
    const char* home = std::getenv("HOME");
    std::string dataHome =
        environmentOr("XDG_DATA_HOME", home && *home ? std::string(home) + "/.local/share" : "");
    bases.push_back(dataHome);
    std::istringstream dirs(environmentOr("XDG_DATA_DIRS", "/usr/local/share:/usr/share"));
    std::string dir;
    while (std::getline(dirs, dir, ':')) {
        bases.push_back(dir);
    }
    std::vector<std::string> folders;
    for (auto& base : bases) {
        // Relative entries are invalid and ignored: they would depend on our working folder.
        if (base.empty() || base.front() != '/') {
            continue;
        }
        while (base.size() > 1 && base.back() == '/') {
            base.pop_back();
        }
        folders.push_back(base + "/applications");
    }
    return folders;
}

int DesktopEntryLaunchers::find(const std::string& identifier, Launcher& launcher) {
    lastError_.clear();
    if (!validIdentifier(identifier)) {
        lastError_ = "invalid launcher identifier \"" + identifier + "\"";
        return Status::invalidArgument;
    }
    for (const auto& folder : applicationFolders()) {
        std::string path = folder + "/" + identifier + ".desktop";
        off_t size = 0;
        if (isRegularFile(path, size)) {
            if (size > maxEntrySize) {
                lastError_ = path + ": too large for a desktop entry";
                return Status::notFound;
            }
            return readEntry(identifier, path, launcher);
        }
    }
    lastError_ = "no desktop entry " + identifier + ".desktop";
    return Status::notFound;
}

int DesktopEntryLaunchers::readEntry(const std::string& identifier, const std::string& path,
                                     Launcher& launcher) {
    std::ifstream file(path, std::ios::binary);
    std::stringstream text;
    text << file.rdbuf();
    std::map<std::string, std::string> keys;
    std::string error;
    if (!file || !DesktopEntry::parseGroup(text.str(), keys, error)) {
        lastError_ = path + ": " + (error.empty() ? "unreadable" : error);
        return Status::notFound;
    }
    std::string type = value(keys, "Type");
    if (!type.empty() && type != "Application") {
        lastError_ = path + ": not an application (Type=" + type + ")";
        return Status::notFound;
    }
    if (value(keys, "Hidden") == "true") {
        lastError_ = path + ": hidden";
        return Status::notFound;
    }
    std::string tryExec = value(keys, "TryExec");
    if (!tryExec.empty() && findProgram(tryExec).empty()) {
        lastError_ = path + ": TryExec program " + tryExec + " is not installed";
        return Status::notFound;
    }
    auto exec = keys.find("Exec");
    DesktopEntry::FieldValues fields{value(keys, "Icon"), value(keys, "Name"), path};
    std::vector<std::string> argv;
    if (exec == keys.end() || !DesktopEntry::parseExec(exec->second, fields, argv, error)) {
        lastError_ = path + ": " + (exec == keys.end() ? "no Exec key" : error);
        return Status::notFound;
    }
    launcher = Launcher{identifier, path, argv};
    return Status::ok;
}

int DesktopEntryLaunchers::launchInBackground(const Launcher& launcher) {
    lastError_.clear();
    return launchDetached(launcher.argv, lastError_);
}

} // namespace Platform::Linux
