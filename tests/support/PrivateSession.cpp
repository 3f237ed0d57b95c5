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

void killAndReap(pid_t pid, int signal) {
    if (pid > 0) {
        kill(pid, signal);
        while (waitpid(pid, nullptr, 0) < 0 && errno == EINTR) {
        }
    }
}

} // namespace

PrivateSession::PrivateSession() {
    const char* tmp = std::getenv("TMPDIR");
    std::string pattern = std::string(tmp && *tmp ? tmp : "/tmp") + "/vlm-session-XXXXXX";
    if (mkdtemp(pattern.data()) == nullptr) {
        error_ = std::string("cannot make a temporary folder: ") + std::strerror(errno);
        return;
    }
    root_ = pattern;
    std::error_code ec;
    for (const char* dir : {"/runtime", "/data", "/config", "/cache", "/share0", "/share1"})
        std::filesystem::create_directories(root_ + dir, ec);
    chmod((root_ + "/runtime").c_str(), 0700);
    if (!startBus())
        return;
    saveAndSet("DBUS_SESSION_BUS_ADDRESS", busAddress_);
    saveAndSet("XDG_RUNTIME_DIR", root_ + "/runtime");
    saveAndSet("XDG_DATA_HOME", dataHome());
    saveAndSet("XDG_DATA_DIRS", dataDir(0) + ":" + dataDir(1));
    saveAndSet("XDG_CONFIG_HOME", root_ + "/config");
    saveAndSet("XDG_CACHE_HOME", root_ + "/cache");
    // No display unless a test gives the world one: a font manager would open its window
    // and the browser on the user's desktop.
    for (const char* display : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
        saveAndSet(display, "");
        unsetenv(display);
    }
}

// A session bus of its own that listens in the folder only and never starts services. The
// daemon prints its address on a pipe; its complaints go to a log beside it.
bool PrivateSession::startBus() {
    std::ofstream(root_ + "/bus.conf")
        << "<busconfig><type>session</type><listen>unix:path=" << root_
        << "/bus</listen><auth>EXTERNAL</auth>\n<policy context=\"default\">"
           "<allow send_destination=\"*\" eavesdrop=\"true\"/><allow eavesdrop=\"true\"/>"
           "<allow own=\"*\"/></policy></busconfig>\n";
    int pipeFds[2];
    if (pipe2(pipeFds, O_CLOEXEC) != 0) {
        error_ = "cannot make a pipe";
        return false;
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, pipeFds[1], STDOUT_FILENO);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, (root_ + "/bus.log").c_str(),
                                     O_WRONLY | O_CREAT | O_APPEND, 0600);
    std::string config = "--config-file=" + root_ + "/bus.conf";
    const char* argv[] = {"dbus-daemon", config.c_str(), "--nofork", "--print-address", nullptr};
    pid_t pid = -1;
    int r = posix_spawnp(&pid, argv[0], &actions, nullptr, const_cast<char**>(argv), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(pipeFds[1]);
    FILE* output = fdopen(pipeFds[0], "r");
    pollfd printed{pipeFds[0], POLLIN, 0};
    char line[1024] = "";
    if (r == 0 && poll(&printed, 1, 30000) > 0 && std::fgets(line, sizeof line, output))
        busAddress_ = std::string(line).substr(0, std::strcspn(line, "\n"));
    std::fclose(output);
    if (r != 0 || busAddress_.empty()) {
        killAndReap(r == 0 ? pid : -1, SIGKILL);
        error_ = r != 0 ? std::string("cannot start dbus-daemon: ") + std::strerror(r)
                        : "dbus-daemon printed no address";
        return false;
    }
    daemonPid_ = pid;
    return true;
}

PrivateSession::~PrivateSession() {
    for (pid_t pid : children_)
        killAndReap(pid, SIGKILL);
    killAndReap(daemonPid_, SIGTERM);
    for (auto it = savedEnvironment_.rbegin(); it != savedEnvironment_.rend(); ++it)
        it->second.first ? setenv(it->first.c_str(), it->second.second.c_str(), 1)
                         : unsetenv(it->first.c_str());
    std::error_code ec;
    if (!root_.empty())
        std::filesystem::remove_all(root_, ec);
}

void PrivateSession::saveAndSet(const char* name, const std::string& value) {
    const char* old = std::getenv(name);
    savedEnvironment_.push_back({name, {old != nullptr, old ? old : ""}});
    setenv(name, value.c_str(), 1);
}

std::string PrivateSession::writeDesktopEntry(const std::string& identifier,
                                              const std::string& contents, int dataDirIndex) {
    std::string folder = (dataDirIndex < 0 ? dataHome() : dataDir(dataDirIndex)) + "/applications";
    std::filesystem::create_directories(folder);
    std::ofstream(folder + "/" + identifier + ".desktop") << contents;
    return folder + "/" + identifier + ".desktop";
}

pid_t PrivateSession::spawn(const std::vector<std::string>& argv) {
    std::vector<char*> args;
    for (const auto& arg : argv)
        args.push_back(const_cast<char*>(arg.c_str()));
    args.push_back(nullptr);
    pid_t pid = -1;
    if (posix_spawnp(&pid, args[0], nullptr, nullptr, args.data(), environ) != 0)
        return -1;
    children_.push_back(pid);
    return pid;
}

bool waitFor(const std::function<bool()>& condition, std::chrono::milliseconds timeout,
             std::chrono::milliseconds interval) {
    for (auto deadline = std::chrono::steady_clock::now() + timeout; !condition();
         std::this_thread::sleep_for(interval))
        if (std::chrono::steady_clock::now() >= deadline)
            return false;
    return true;
}

} // namespace VlmTest
