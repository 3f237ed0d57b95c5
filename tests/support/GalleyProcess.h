#pragma once

// A program run as a user runs it, for integration tests: its standard output and error go
// to files that the test reads while it runs and after it ended.

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

extern char** environ;

namespace VLMTest {

class ProgramRun {
public:
    // Starts `argv` with its output in `outputPrefix`.out and .err.
    ProgramRun(const std::vector<std::string>& argv, const std::string& outputPrefix)
        : out_(outputPrefix + ".out"), err_(outputPrefix + ".err") {
        std::vector<char*> args;
        for (const auto& argument : argv)
            args.push_back(const_cast<char*>(argument.c_str()));
        args.push_back(nullptr);
        posix_spawn_file_actions_t files;
        posix_spawn_file_actions_init(&files);
        posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, out_.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        posix_spawn_file_actions_addopen(&files, STDERR_FILENO, err_.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        if (posix_spawn(&pid_, args[0], &files, nullptr, args.data(), environ) != 0)
            pid_ = -1;
        posix_spawn_file_actions_destroy(&files);
    }
    ~ProgramRun() {
        if (pid_ > 0 && status_ < 0) {
            kill(pid_, SIGKILL);
            waitpid(pid_, nullptr, 0);
        }
    }
    ProgramRun(const ProgramRun&) = delete;
    ProgramRun& operator=(const ProgramRun&) = delete;

    std::string output() const { return read(out_); }
    std::string errors() const { return read(err_); }

    // The exit status (128 + signal for a killed program), or -1 when it did not end in time
    // (it is killed then).
    int wait(std::chrono::seconds limit = std::chrono::seconds(60)) {
        const auto deadline = std::chrono::steady_clock::now() + limit;
        while (status_ < 0 && pid_ > 0 && std::chrono::steady_clock::now() < deadline) {
            int raw = 0;
            if (waitpid(pid_, &raw, WNOHANG) == pid_) {
                status_ = WIFEXITED(raw) ? WEXITSTATUS(raw) : 128 + WTERMSIG(raw);
                break;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        return status_;
    }
    // Polls until the output holds `text` (bounded); false when it never did.
    bool waitForOutput(const std::string& text, std::chrono::seconds limit = std::chrono::seconds(20)) const {
        const auto deadline = std::chrono::steady_clock::now() + limit;
        while (std::chrono::steady_clock::now() < deadline) {
            if (output().find(text) != std::string::npos)
                return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        return false;
    }

private:
    static std::string read(const std::string& path) {
        std::ifstream in(path);
        std::stringstream text;
        text << in.rdbuf();
        return text.str();
    }
    std::string out_, err_;
    pid_t pid_ = -1;
    int status_ = -1;
};

} // namespace VLMTest
