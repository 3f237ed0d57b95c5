// A stand-in application for integration tests: owns a bus name and answers app events.
//
//   vlm_test_bus_peer NAME [--class CODE]... [--lifetime SECONDS] [--ready-file PATH]
//
// Every event of an installed class (default "VLMQ") is answered with
// "<class>/<id>:<text>"; an event with ID "quit" ends the program. It also ends when the
// bus goes away or after the lifetime (default 120 s), so that it never outlives a test.
// With --ready-file it writes its pid there once the name is owned.

#include "platform/Status.h"
#include "platform/linux/DBusAppEvents.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

bool quitRequested = false;

int answer(const Platform::AppEvent& event, std::string& reply, void*) {
    if (event.eventID == "quit") {
        quitRequested = true;
    }
    reply = event.eventClass + "/" + event.eventID + ":" + event.text;
    return Platform::Status::ok;
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr,
                     "usage: %s NAME [--class CODE]... [--lifetime SECONDS] "
                     "[--ready-file PATH]\n",
                     argv[0]);
        return 2;
    }
    std::string name = argv[1];
    std::vector<std::string> classes;
    int lifetimeSeconds = 120;
    std::string readyFile;
    for (int i = 2; i + 1 < argc; i += 2) {
        std::string option = argv[i];
        if (option == "--class") {
            classes.push_back(argv[i + 1]);
        } else if (option == "--lifetime") {
            lifetimeSeconds = std::atoi(argv[i + 1]);
        } else if (option == "--ready-file") {
            readyFile = argv[i + 1];
        }
    }
    if (classes.empty()) {
        classes.push_back("VLMQ");
    }

    int status = 0;
    auto events = Platform::Linux::DBusAppEvents::open(name, status);
    if (!events) {
        std::fprintf(stderr, "vlm_test_bus_peer: cannot own %s (status %d)\n", name.c_str(),
                     status);
        return 1;
    }
    for (const auto& eventClass : classes) {
        events->installHandler(eventClass, Platform::anyEventID, answer, nullptr);
    }
    if (!readyFile.empty()) {
        std::ofstream(readyFile) << getpid() << "\n";
    }
    auto end = std::chrono::steady_clock::now() + std::chrono::seconds(lifetimeSeconds);
    status = events->runUntil(
        [&] { return quitRequested || std::chrono::steady_clock::now() >= end; }, 100);
    return status == Platform::Status::ok ? 0 : 1;
}
