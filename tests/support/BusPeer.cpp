// A stand-in application for integration tests: owns a bus name and answers app events.
//
//   vlm_test_bus_peer NAME [--class CODE]... [--lifetime SECONDS]
//
// Every event of an installed class (default "VLMQ") is answered with
// "<class>/<id>:<text>". It ends when the bus goes away or after the lifetime (default
// 120 s), so that it never outlives a test.

#include "platform/Status.h"
#include "platform/linux/DBusAppEvents.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

namespace {

int answer(const Platform::AppEvent& event, std::string& reply, void*) {
    reply = event.eventClass + "/" + event.eventID + ":" + event.text;
    return Platform::Status::ok;
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fputs("usage: vlm_test_bus_peer NAME [--class CODE]... [--lifetime SECONDS]\n",
                   stderr);
        return 2;
    }
    std::map<std::string, std::vector<std::string>> options{{"--class", {}}};
    for (int i = 2; i + 1 < argc; i += 2)
        options[argv[i]].push_back(argv[i + 1]);
    int status = 0;
    auto events = Platform::Linux::DBusAppEvents::open(argv[1], status);
    if (!events) {
        std::fprintf(stderr, "vlm_test_bus_peer: cannot own %s (status %d)\n", argv[1], status);
        return 1;
    }
    auto& classes = options["--class"];
    for (const auto& eventClass : classes.empty() ? std::vector<std::string>{"VLMQ"} : classes)
        events->installHandler(eventClass, Platform::anyEventID, answer, nullptr);
    const auto& lifetime = options["--lifetime"];
    auto end = std::chrono::steady_clock::now() +
               std::chrono::seconds(lifetime.empty() ? 120 : std::atoi(lifetime.back().c_str()));
    status = events->runUntil([&] { return std::chrono::steady_clock::now() >= end; }, 100);
    return status == Platform::Status::ok ? 0 : 1;
}
