#include "platform/linux/BackgroundLaunch.h"

#include "platform/Status.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace Platform::Linux {

namespace {

[[noreturn]] void reportAndExit(int errorPipe, int error) {
    ssize_t written = write(errorPipe, &error, sizeof error);
    (void)written;
    _exit(127);
}

// Runs in the grandchild, between fork and exec: async-signal-safe calls only, since the
// caller may have other threads.
[[noreturn]] void execDetached(const char* path, char* const* argv, int errorPipe) {
    int devNull = open("/dev/null", O_RDWR);
    if (devNull < 0 || dup2(devNull, STDIN_FILENO) < 0 || dup2(devNull, STDOUT_FILENO) < 0 ||
        dup2(devNull, STDERR_FILENO) < 0) {
        reportAndExit(errorPipe, errno);
    }
    if (devNull > STDERR_FILENO) {
        close(devNull);
    }
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    struct sigaction defaults {};
    defaults.sa_handler = SIG_DFL;
    for (int sig = 1; sig < NSIG; ++sig) {
        sigaction(sig, &defaults, nullptr); // fails harmlessly for SIGKILL, SIGSTOP
    }
    // Whatever the host left open (bus sockets, documents) must not leak into the program.
    close_range(STDERR_FILENO + 1, ~0U, CLOSE_RANGE_CLOEXEC);
    execve(path, argv, environ);
    reportAndExit(errorPipe, errno);
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
    // Everything that allocates happens before the fork.
    std::vector<char*> args;
    for (const auto& argument : argv) {
        args.push_back(const_cast<char*>(argument.c_str()));
    }
    args.push_back(nullptr);

    int errorPipe[2];
    if (pipe2(errorPipe, O_CLOEXEC) != 0) {
        error = std::string("pipe: ") + std::strerror(errno);
        return Status::launchFailed;
    }
    pid_t child = fork();
    if (child < 0) {
        error = std::string("fork: ") + std::strerror(errno);
        close(errorPipe[0]);
        close(errorPipe[1]);
        return Status::launchFailed;
    }
    if (child == 0) {
        close(errorPipe[0]);
        if (setsid() < 0) {
            reportAndExit(errorPipe[1], errno);
        }
        pid_t grandchild = fork();
        if (grandchild < 0) {
            reportAndExit(errorPipe[1], errno);
        }
        if (grandchild > 0) {
            _exit(0);
        }
        execDetached(path.c_str(), args.data(), errorPipe[1]);
    }
    close(errorPipe[1]);
    waitForChild(child);
    // The write end closes on a successful exec (CLOEXEC): end of file means it ran.
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
