#include "support/FakeNamedNotifications.h"

#include "platform/Status.h"

#include <chrono>

namespace VLMTest {

int FakeNamedNotifications::post(const std::string& name) {
    std::lock_guard<std::mutex> guard(lock);
    ++counters[name];
    return Platform::Status::ok;
}

int FakeNamedNotifications::registerCheck(const std::string& name, int& token) {
    std::lock_guard<std::mutex> guard(lock);
    if (failing) {
        return Platform::Status::permissionDenied;
    }
    token = nextToken++;
    registrations[token] = {name, counters[name], false, 0};
    return Platform::Status::ok;
}

int FakeNamedNotifications::check(int token, int& check) {
    std::unique_lock<std::mutex> guard(lock);
    changed.wait(guard, [this] { return !held; });
    auto found = registrations.find(token);
    if (found == registrations.end()) {
        return Platform::Status::invalidArgument;
    }
    Registration& registration = found->second;
    const std::uint64_t now = counters[registration.name];
    check = (!registration.checkedOnce || now != registration.lastSeen) ? 1 : 0;
    registration.checkedOnce = true;
    registration.lastSeen = now;
    ++registration.checks;
    changed.notify_all();
    return Platform::Status::ok;
}

int FakeNamedNotifications::cancel(int token) {
    std::lock_guard<std::mutex> guard(lock);
    return registrations.erase(token) != 0 ? Platform::Status::ok
                                           : Platform::Status::invalidArgument;
}

void FakeNamedNotifications::failRegistrations(bool fail) {
    std::lock_guard<std::mutex> guard(lock);
    failing = fail;
}

void FakeNamedNotifications::holdChecks() {
    std::lock_guard<std::mutex> guard(lock);
    held = true;
}

void FakeNamedNotifications::releaseChecks() {
    {
        std::lock_guard<std::mutex> guard(lock);
        held = false;
    }
    changed.notify_all();
}

std::uint64_t FakeNamedNotifications::checksDone(int token) const {
    std::lock_guard<std::mutex> guard(lock);
    auto found = registrations.find(token);
    return found != registrations.end() ? found->second.checks : 0;
}

bool FakeNamedNotifications::waitForChecks(int token, std::uint64_t count) const {
    std::unique_lock<std::mutex> guard(lock);
    return changed.wait_for(guard, std::chrono::seconds(5), [&] {
        auto found = registrations.find(token);
        return found != registrations.end() && found->second.checks >= count;
    });
}

int FakeNamedNotifications::tokenOf(const std::string& name) const {
    std::lock_guard<std::mutex> guard(lock);
    int newest = -1;
    for (const auto& [token, registration] : registrations) {
        if (registration.name == name) {
            newest = token;
        }
    }
    return newest;
}

} // namespace VLMTest
