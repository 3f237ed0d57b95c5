#pragma once

#include <exception>
#include <functional>
#include <string>
#include <vector>

namespace Galley {

// Every call from the host into plug-in code goes through guarded(): an exception that
// escapes is reported once and the host runs on. The guard also knows whether plug-in code
// is on the stack, so that objects a plug-in may still hold (a closed dialog it reads after
// its wait) are destroyed only once control is back in the host.
class PluginCalls {
public:
    using Reporter = std::function<void(const std::string& message)>;
    explicit PluginCalls(Reporter reporter);

    // Runs `call`; true when it returned normally. `what` names the call in the report
    // ("galley: plug-in NAME failed in WHAT: MESSAGE").
    bool guarded(const std::string& plugin, const std::string& what,
                 const std::function<void()>& call);

    // Runs `deletion` once no plug-in call is on the stack (at once when none is).
    void deferUntilHostLevel(std::function<void()> deletion);
    int depth() const { return depth_; }
    int failures() const { return failures_; }

    void report(const std::string& message) const { reporter_(message); }

private:
    void failed(const std::string& plugin, const std::string& what, const std::string& message);

    Reporter reporter_;
    int depth_ = 0;
    int failures_ = 0;
    std::vector<std::function<void()>> deferred_;
};

} // namespace Galley
