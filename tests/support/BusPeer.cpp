// A stand-in application for integration tests: owns a bus name and answers app events.
//
//   vlm_test_bus_peer NAME [--class CODE]... [--reply-file PATH] [--silent] [--lifetime SECONDS]
//
// Every event of an installed class (default "VLMQ") is answered with
// "<class>/<id>:<text>", or with the contents of PATH. --silent owns the name but never
// reads the bus, as a stopped application does. It ends when the bus goes away or after the
// lifetime (default 120 s), so that it never outlives a test.

#include "platform/Status.h"
#include "platform/linux/DBusAppEvents.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace {

int answer(const Platform::AppEvent& event, std::string& reply, void* refcon) {
    const auto* fixed = static_cast<const std::string*>(refcon);
    reply = fixed != nullptr ? *fixed : event.eventClass + "/" + event.eventID + ":" + event.text;
    return Platform::Status::ok;
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fputs("usage: vlm_test_bus_peer NAME [--class CODE]... [--reply-file PATH] "
                   "[--silent] [--lifetime SECONDS]\n",
                   stderr);
        return 2;
    }
    std::map<std::string, std::vector<std::string>> options{{"--class", {}}};
    bool silent = false;
    for (int i = 2; i < argc; ++i) {
        const std::string option = argv[i];
        if (option == "--silent") {
            silent = true;
        } else if (i + 1 < argc) {
            options[option].push_back(argv[++i]);
        }
    }
    int status = 0;
    auto events = Platform::Linux::DBusAppEvents::open(argv[1], status);
    if (!events) {
        std::fprintf(stderr, "vlm_test_bus_peer: cannot own %s (status %d)\n", argv[1], status);
        return 1;
    }
    const auto& lifetime = options["--lifetime"];
    auto end = std::chrono::steady_clock::now() +
               std::chrono::seconds(lifetime.empty() ? 120 : std::atoi(lifetime.back().c_str()));
    if (silent) {
        std::this_thread::sleep_until(end);
        return 0;
    }
    std::string fixedReply;
    const auto& replyFile = options["--reply-file"];
    if (!replyFile.empty()) {
        std::stringstream text;
        text << std::ifstream(replyFile.back(), std::ios::binary).rdbuf();
        fixedReply = text.str();
    }
    auto& classes = options["--class"];
    for (const auto& eventClass : classes.empty() ? std::vector<std::string>{"VLMQ"} : classes)
        events->installHandler(eventClass, Platform::anyEventID, answer,
                               replyFile.empty() ? nullptr : &fixedReply);
    status = events->runUntil([&] { return std::chrono::steady_clock::now() >= end; }, 100);
    return status == Platform::Status::ok ? 0 : 1;
}
