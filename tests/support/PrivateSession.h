#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace VlmTest {

// A private world for integration tests: its own dbus-daemon session bus and its own XDG
// folders in a fresh temporary folder. While it lives, DBUS_SESSION_BUS_ADDRESS and the
// XDG_* variables of this process (inherited by children) point into it; the destructor
// stops the bus and every process handed to it, restores the environment and removes the
// folder. The user's real bus and folders are never touched.
class PrivateSession {
public:
    PrivateSession();
    ~PrivateSession();
    PrivateSession(const PrivateSession&) = delete;
    PrivateSession& operator=(const PrivateSession&) = delete;

    // False when the bus could not be started; error() then says why.
    bool ok() const { return daemonPid_ > 0; }
    const std::string& error() const { return error_; }
    const std::string& busAddress() const { return busAddress_; }
    const std::string& root() const { return root_; }
    std::string dataHome() const { return root_ + "/data"; }

    // Writes `applications/<identifier>.desktop` into the data home (dataDirIndex < 0) or
    // into that XDG_DATA_DIRS entry (0 or 1); returns the file's path.
    std::string writeDesktopEntry(const std::string& identifier, const std::string& contents,
                                  int dataDirIndex = -1);

    // Starts a program; it is killed and reaped when the session ends. Returns its pid, or -1.
    pid_t spawn(const std::vector<std::string>& argv);
    // A process started elsewhere (launched detached, say) that must not outlive the session.
    void killLater(pid_t pid) { children_.push_back(pid); }

private:
    bool startBus();
    void saveAndSet(const char* name, const std::string& value);
    std::string dataDir(int index) const { return root_ + "/share" + std::to_string(index); }

    std::string root_, busAddress_, error_;
    pid_t daemonPid_ = -1;
    std::vector<pid_t> children_;
    std::vector<std::pair<std::string, std::pair<bool, std::string>>> savedEnvironment_;
};

// Polls `condition` until it holds or `timeout` passes; true when it held. Tests use it
// instead of fixed sleeps, with generous deadlines for loaded machines.
bool waitFor(const std::function<bool()>& condition,
             std::chrono::milliseconds timeout = std::chrono::seconds(20),
             std::chrono::milliseconds interval = std::chrono::milliseconds(5));

} // namespace VlmTest
