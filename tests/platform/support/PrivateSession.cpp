#include "PrivateSession.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <poll.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

extern char** environ;

namespace VlmTest {

namespace {

constexpr int dataDirCount = 2;

std::string makeTemporaryRoot() {
    const char* tmp = std::getenv("TMPDIR");
    std::string pattern = std::string(tmp && *tmp ? tmp : "/tmp") + "/vlm-session-XXXXXX";
    std::vector<char> buffer(pattern.begin(), pattern.end());
    buffer.push_back('\0');
    if (mkdtemp(buffer.data()) == nullptr) {
        return {};
    }
    return buffer.data();
}

std::string busConfig(const std::string& socketPath) {
    return "<!DOCTYPE busconfig PUBLIC \"-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN\"\n"
           " \"http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd\">\n"
           "<busconfig>\n"
           "  <type>session</type>\n"
           "  <listen>unix:path=" +
           socketPath +
           "</listen>\n"
           "  <auth>EXTERNAL</auth>\n"
           "  <policy context=\"default\">\n"
           "    <allow send_destination=\"*\" eavesdrop=\"true\"/>\n"
           "    <allow eavesdrop=\"true\"/>\n"
           "    <allow own=\"*\"/>\n"
           "  </policy>\n"
           "</busconfig>\n";
}

// Reads one line from `fd` within `timeout`; empty on timeout or end of file.
std::string readLine(int fd, std::chrono::milliseconds timeout) {
    std::string line;
    auto deadline = std::chrono::steady_clock::now() + timeout;
    while (std::chrono::steady_clock::now() < deadline) {
        pollfd p{fd, POLLIN, 0};
        auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        int r = poll(&p, 1, static_cast<int>(std::max<long>(left.count(), 1)));
        if (r < 0 && errno == EINTR) {
            continue;
        }
        if (r <= 0) {
            break;
        }
        char c = 0;
        ssize_t n = read(fd, &c, 1);
        if (n <= 0) {
            break;
        }
        if (c == '\n') {
            return line;
        }
        line += c;
    }
    return {};
}

void killAndReap(pid_t pid, int signal) {
    if (pid <= 0) {
        return;
    }
    kill(pid, signal);
    while (waitpid(pid, nullptr, 0) < 0 && errno == EINTR) {
    }
}

} // namespace

PrivateSession::PrivateSession() {
    start();
}

void PrivateSession::start() {
    root_ = makeTemporaryRoot();
    if (root_.empty()) {
        error_ = std::string("cannot make a temporary folder: ") + std::strerror(errno);
        return;
    }
    namespace fs = std::filesystem;
    std::error_code ec;
    for (const char* sub : {"runtime", "data", "config", "cache"}) {
        fs::create_directories(root_ + "/" + sub, ec);
    }
    chmod(runtimeDir().c_str(), 0700);
    for (const auto& dir : dataDirs()) {
        fs::create_directories(dir, ec);
    }
    const std::string configPath = root_ + "/bus.conf";
    std::ofstream(configPath) << busConfig(root_ + "/bus");

    int pipeFds[2];
    if (pipe2(pipeFds, O_CLOEXEC) != 0) {
        error_ = "cannot make a pipe";
        return;
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, pipeFds[1], STDOUT_FILENO);
    // The daemon's complaints (fd limits and the like) go to a log in the session folder.
    const std::string logPath = root_ + "/bus.log";
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, logPath.c_str(),
                                     O_WRONLY | O_CREAT | O_APPEND, 0600);
    std::string configArgument = "--config-file=" + configPath;
    char* argv[] = {const_cast<char*>("dbus-daemon"), configArgument.data(),
                    const_cast<char*>("--nofork"), const_cast<char*>("--print-address"), nullptr};
    pid_t pid = -1;
    int r = posix_spawnp(&pid, "dbus-daemon", &actions, nullptr, argv, environ);
    posix_spawn_file_actions_destroy(&actions);
    close(pipeFds[1]);
    if (r != 0) {
        close(pipeFds[0]);
        error_ = std::string("cannot start dbus-daemon: ") + std::strerror(r);
        return;
    }
    busAddress_ = readLine(pipeFds[0], std::chrono::seconds(30));
    close(pipeFds[0]);
    if (busAddress_.empty()) {
        killAndReap(pid, SIGKILL);
        error_ = "dbus-daemon printed no address";
        return;
    }
    daemonPid_ = pid;

    saveAndSet("DBUS_SESSION_BUS_ADDRESS", busAddress_);
    saveAndSet("XDG_RUNTIME_DIR", runtimeDir());
    saveAndSet("XDG_DATA_HOME", dataHome());
    std::string dirs;
    for (const auto& dir : dataDirs()) {
        dirs += (dirs.empty() ? "" : ":") + dir;
    }
    saveAndSet("XDG_DATA_DIRS", dirs);
    saveAndSet("XDG_CONFIG_HOME", root_ + "/config");
    saveAndSet("XDG_CACHE_HOME", root_ + "/cache");
}

PrivateSession::~PrivateSession() {
    for (pid_t pid : children_) {
        killAndReap(pid, SIGKILL);
    }
    for (pid_t pid : extraPids_) {
        kill(pid, SIGKILL);
    }
    killAndReap(daemonPid_, SIGTERM);
    for (auto it = savedEnvironment_.rbegin(); it != savedEnvironment_.rend(); ++it) {
        if (it->second.first) {
            setenv(it->first.c_str(), it->second.second.c_str(), 1);
        } else {
            unsetenv(it->first.c_str());
        }
    }
    if (!root_.empty()) {
        std::error_code ec;
        std::filesystem::remove_all(root_, ec);
    }
}

void PrivateSession::saveAndSet(const char* name, const std::string& value) {
    const char* old = std::getenv(name);
    savedEnvironment_.push_back({name, {old != nullptr, old ? old : ""}});
    setenv(name, value.c_str(), 1);
}

std::vector<std::string> PrivateSession::dataDirs() const {
    std::vector<std::string> dirs;
    for (int i = 0; i < dataDirCount; ++i) {
        dirs.push_back(root_ + "/share" + std::to_string(i));
    }
    return dirs;
}

std::string PrivateSession::writeDesktopEntry(const std::string& identifier,
                                              const std::string& contents, int dataDirIndex) {
    std::string base = dataDirIndex < 0 ? dataHome() : dataDirs().at(dataDirIndex);
    std::filesystem::create_directories(base + "/applications");
    std::string path = base + "/applications/" + identifier + ".desktop";
    std::ofstream(path) << contents;
    return path;
}

pid_t PrivateSession::spawn(const std::vector<std::string>& argv) {
    std::vector<char*> args;
    for (const auto& arg : argv) {
        args.push_back(const_cast<char*>(arg.c_str()));
    }
    args.push_back(nullptr);
    pid_t pid = -1;
    if (posix_spawnp(&pid, args[0], nullptr, nullptr, args.data(), environ) != 0) {
        return -1;
    }
    children_.push_back(pid);
    return pid;
}

bool waitFor(const std::function<bool()>& condition, std::chrono::milliseconds timeout,
             std::chrono::milliseconds interval) {
    auto deadline = std::chrono::steady_clock::now() + timeout;
    for (;;) {
        if (condition()) {
            return true;
        }
        if (std::chrono::steady_clock::now() >= deadline) {
            return false;
        }
        std::this_thread::sleep_for(interval);
    }
}

} // namespace VlmTest
