#pragma once

// Programs the road benchmarks start, with their output on /dev/null so that a terminal's
// speed never counts in a figure.
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>

#include <string>
#include <vector>

extern char** environ;

namespace Bench {

// Starts a program in this process's environment; its pid, or -1.
inline pid_t startQuietly(const std::vector<std::string>& arguments) {
    std::vector<char*> argv;
    for (const auto& argument : arguments)
        argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    posix_spawn_file_actions_t quiet;
    posix_spawn_file_actions_init(&quiet);
    posix_spawn_file_actions_addopen(&quiet, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&quiet, 2, "/dev/null", O_WRONLY, 0);
    pid_t pid = -1;
    const int spawned = posix_spawn(&pid, argv[0], &quiet, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&quiet);
    return spawned == 0 ? pid : -1;
}

// Runs a program to its end; its exit status, or -1 when it did not start or exit.
inline int runQuietly(const std::vector<std::string>& arguments) {
    const pid_t pid = startQuietly(arguments);
    int status = 0;
    if (pid < 0 || waitpid(pid, &status, 0) != pid)
        return -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

} // namespace Bench
