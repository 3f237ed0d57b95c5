#include "platform/linux/BackgroundLaunch.h"

#include "platform/Status.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <pthread.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace Platform::Linux {

namespace {

// What the program starts with: the standard streams on /dev/null, no descriptor of ours
// (bus sockets, documents), every signal at its default and none blocked, a session of its
// own.
class SpawnSetup {
public:
    SpawnSetup() {
        sigset_t all;
        sigset_t none;
        sigfillset(&all);
        sigemptyset(&none);
        ready_ = posix_spawn_file_actions_init(&actions_) == 0;
        ready_ = posix_spawnattr_init(&attributes_) == 0 && ready_;
        ready_ =
            ready_ &&
            posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDWR, 0) ==
                0 &&
            posix_spawn_file_actions_adddup2(&actions_, STDIN_FILENO, STDOUT_FILENO) == 0 &&
            posix_spawn_file_actions_adddup2(&actions_, STDIN_FILENO, STDERR_FILENO) == 0 &&
            posix_spawn_file_actions_addclosefrom_np(&actions_, STDERR_FILENO + 1) == 0 &&
            posix_spawnattr_setsigdefault(&attributes_, &all) == 0 &&
            posix_spawnattr_setsigmask(&attributes_, &none) == 0 &&
            posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK |
                                                       POSIX_SPAWN_SETSID) == 0;
    }
    ~SpawnSetup() {
        posix_spawn_file_actions_destroy(&actions_);
        posix_spawnattr_destroy(&attributes_);
    }
    SpawnSetup(const SpawnSetup&) = delete;
    SpawnSetup& operator=(const SpawnSetup&) = delete;

    bool ready() const { return ready_; }
    const posix_spawn_file_actions_t* actions() const { return &actions_; }
    const posix_spawnattr_t* attributes() const { return &attributes_; }

private:
    posix_spawn_file_actions_t actions_{};
    posix_spawnattr_t attributes_{};
    bool ready_ = false;
};

// The double fork without copying the caller's address space twice (a host with its
// toolkit loaded has hundreds of mappings, and two copies cost more than starting the
// program itself): a vfork child that only spawns the program and exits with the outcome.
// The program is then nobody's child but init's (or a subreaper's). Returns the child, or
// -1 with errno set. The child writes the errno that stopped the program to `errorPipe`, and
// nothing once it runs: the outcome does not depend on the caller being able to reap the
// child (a host that ignores SIGCHLD cannot).
pid_t spawnThroughChild(const std::string& path, char* const* argv, const SpawnSetup& setup,
                        int errorPipe) {
    // The child borrows our memory until it exits: none of our signal handlers may run in it.
    sigset_t all;
    sigset_t previous;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &previous);
    const pid_t child = vfork();
    if (child == 0) {
        pid_t program = 0;
        const int error =
            posix_spawn(&program, path.c_str(), setup.actions(), setup.attributes(), argv, environ);
        if (error != 0) {
            ssize_t written = write(errorPipe, &error, sizeof error);
            (void)written;
        }
        _exit(error == 0 ? 0 : 127);
    }
    const int forkError = errno;
    pthread_sigmask(SIG_SETMASK, &previous, nullptr);
    errno = forkError;
    return child;
}

int waitForChild(pid_t child) {
    int status = 0;
    while (waitpid(child, &status, 0) < 0) {
        if (errno != EINTR) {
            return -1;
        }
    }
    return status;
}

} // namespace

std::string findProgram(const std::string& program) {
    if (program.empty()) {
        return {};
    }
    if (program.find('/') != std::string::npos) {
        return access(program.c_str(), X_OK) == 0 ? program : std::string();
    }
    const char* path = std::getenv("PATH");
    std::string dirs = path && *path ? path : "/usr/local/bin:/usr/bin:/bin";
    std::size_t start = 0;
    while (start <= dirs.size()) {
        std::size_t end = dirs.find(':', start);
        if (end == std::string::npos) {
            end = dirs.size();
        }
        std::string dir = dirs.substr(start, end - start);
        std::string candidate = (dir.empty() ? std::string(".") : dir) + "/" + program;
        if (access(candidate.c_str(), X_OK) == 0) {
            return candidate;
        }
        start = end + 1;
    }
    return {};
}

int launchDetached(const std::vector<std::string>& argv, std::string& error) {
    if (argv.empty() || argv.front().empty()) {
        error = "nothing to launch";
        return Status::invalidArgument;
    }
    const std::string path = findProgram(argv.front());
    if (path.empty()) {
        error = argv.front() + ": program not found or not executable";
        return Status::launchFailed;
    }
    std::vector<char*> args;
    for (const auto& argument : argv) {
        args.push_back(const_cast<char*>(argument.c_str()));
    }
    args.push_back(nullptr);
    const SpawnSetup setup;
    if (!setup.ready()) {
        error = "cannot prepare the launch of " + argv.front();
        return Status::launchFailed;
    }
    int errorPipe[2];
    if (pipe2(errorPipe, O_CLOEXEC) != 0) {
        error = std::string("pipe: ") + std::strerror(errno);
        return Status::launchFailed;
    }
    const pid_t child = spawnThroughChild(path, args.data(), setup, errorPipe[1]);
    close(errorPipe[1]);
    if (child < 0) {
        error = std::string("vfork: ") + std::strerror(errno);
        close(errorPipe[0]);
        return Status::launchFailed;
    }
    waitForChild(child);
    // The child has exited: its error, or end of file when the program runs.
    int childError = 0;
    ssize_t n;
    do {
        n = read(errorPipe[0], &childError, sizeof childError);
    } while (n < 0 && errno == EINTR);
    close(errorPipe[0]);
    if (n == static_cast<ssize_t>(sizeof childError)) {
        error = argv.front() + ": " + std::strerror(childError);
        return Status::launchFailed;
    }
    return Status::ok;
}

} // namespace Platform::Linux
