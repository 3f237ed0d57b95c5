// notifyutil: post and wait for named notifications from the shell.

#include "platform/linux/NotifyFolder.h"
#include "platform/linux/notify.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

namespace {

enum ExitCode { success = 0, failure = 1, usageError = 2, timedOut = 3 };

void printUsage(std::FILE* out) {
    std::fputs("Usage: notifyutil -p NAME\n"
               "       notifyutil -w NAME [-t SECONDS]\n"
               "\n"
               "Posts or waits for a named notification of this user's session.\n"
               "\n"
               "  -p NAME       post NAME once\n"
               "  -w NAME       wait for the next posting of NAME, then print NAME\n"
               "  -t SECONDS    with -w: give up after SECONDS (exit status 3)\n"
               "  -h, --help    show this help\n"
               "\n"
               "Notifications live in $XDG_RUNTIME_DIR/notify (or /tmp/notify-<uid>).\n"
               "Exit status: 0 done, 1 failed, 2 usage error, 3 timed out.\n",
               out);
}

int report(const char* name, int status) {
    std::fprintf(stderr, "notifyutil: %s\n",
                 Platform::Linux::NotifyFolder::describeFailure(name, status).c_str());
    return failure;
}

int post(const char* name) {
    int status = notify_post(name);
    return status == NOTIFY_STATUS_OK ? success : report(name, status);
}

int wait(const char* name, double timeoutSeconds) {
    int token = 0;
    int status = notify_register_check(name, &token);
    if (status != NOTIFY_STATUS_OK) {
        return report(name, status);
    }
    int changed = 0;
    notify_check(token, &changed); // the first check always reports; it is not a posting
    auto deadline = std::chrono::steady_clock::now() +
                    std::chrono::duration_cast<std::chrono::steady_clock::duration>(
                        std::chrono::duration<double>(timeoutSeconds));
    for (;;) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
        if (notify_check(token, &changed) == NOTIFY_STATUS_OK && changed) {
            std::printf("%s\n", name);
            std::fflush(stdout);
            notify_cancel(token);
            return success;
        }
        if (timeoutSeconds > 0 && std::chrono::steady_clock::now() >= deadline) {
            notify_cancel(token);
            return timedOut;
        }
    }
}

} // namespace

int main(int argc, char** argv) {
    const char* postName = nullptr;
    const char* waitName = nullptr;
    double timeoutSeconds = 0;
    for (int i = 1; i < argc; ++i) {
        std::string option = argv[i];
        if (option == "-h" || option == "--help") {
            printUsage(stdout);
            return success;
        }
        if ((option == "-p" || option == "-w" || option == "-t") && i + 1 < argc) {
            const char* value = argv[++i];
            if (option == "-p") {
                postName = value;
            } else if (option == "-w") {
                waitName = value;
            } else {
                char* end = nullptr;
                timeoutSeconds = std::strtod(value, &end);
                if (end == value || *end != '\0' || timeoutSeconds <= 0) {
                    std::fprintf(stderr, "notifyutil: -t needs a positive number\n");
                    return usageError;
                }
            }
            continue;
        }
        std::fprintf(stderr, "notifyutil: unexpected argument \"%s\"\n", argv[i]);
        printUsage(stderr);
        return usageError;
    }
    if ((postName == nullptr) == (waitName == nullptr)) {
        printUsage(stderr);
        return usageError;
    }
    return postName != nullptr ? post(postName) : wait(waitName, timeoutSeconds);
}
