#include "link/NotificationDaemon.h"

#include "foundation/Semaphore.h"
#include "platform/Platform.h"

#include <stdexcept>

namespace BSDNotification {

namespace {

Platform::NamedNotifications& notifications() {
    return *Platform::services().notifications;
}

} // namespace

Daemon::ReadingThread::ReadingThread(int token)
    : token(token), messages(Tamrik::Semaphore::getMaxValue()) {}

// Thread's own destructor runs only after this class's members are gone, so the loop
// must be stopped here, while the message queue it pushes into still exists.
Daemon::ReadingThread::~ReadingThread() {
    stop();
}

bool Daemon::ReadingThread::stop() {
    keepRunning = false;
    return join();
}

int Daemon::ReadingThread::run() {
    while (keepRunning) {
        int check = -1;
        if (notifications().check(token, check) == Platform::Status::ok && check != 0) {
            messages.push(1); // unbounded: never waits
        }
        Tamrik::Thread::sleep(1);
    }
    return 0;
}

bool Daemon::ReadingThread::checkMessage(int& message) {
    return messages.tryPop(message);
}

Daemon::~Daemon() {
    removeListener("");
}

bool Daemon::addListener(const std::string& name) {
    int token = 0;
    if (notifications().registerCheck(name, token) != Platform::Status::ok) {
        throw std::runtime_error("token could not be registered");
    }
    Tamrik::SmartPointer<ReadingThread> reader(new ReadingThread(token));
    // A reader already watching this name is released here; its registration stays.
    listeners[name] = reader;
    return reader->start(false, -1);
}

void Daemon::removeListener(const std::string& name) {
    if (name.empty()) {
        listeners.clear();
        return;
    }
    auto found = listeners.find(name);
    if (found == listeners.end() || found->second.isNull()) {
        return;
    }
    if (found->second->stop()) {
        notifications().cancel(found->second->getToken());
        listeners.erase(found);
    }
}

bool Daemon::hasFired(const std::string& name) {
    int message = 0;
    if (!name.empty()) {
        auto found = listeners.find(name);
        return found != listeners.end() && found->second->checkMessage(message);
    }
    for (auto& [watched, reader] : listeners) {
        if (reader->checkMessage(message)) {
            return true;
        }
    }
    return false;
}

} // namespace BSDNotification
