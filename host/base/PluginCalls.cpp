#include "host/base/PluginCalls.h"

#include <stdexcept>

namespace Galley {

PluginCalls::PluginCalls(Reporter reporter) : reporter_(std::move(reporter)) {}

bool PluginCalls::guarded(const std::string& plugin, const std::string& what,
                          const std::function<void()>& call) {
    ++depth_;
    bool ok = true;
    try {
        call();
    } catch (const std::exception& error) {
        failed(plugin, what, error.what());
        ok = false;
    } catch (...) {
        failed(plugin, what, "an exception that is not a std::exception");
        ok = false;
    }
    if (--depth_ == 0) {
        while (!deferred_.empty()) {
            auto batch = std::move(deferred_);
            deferred_.clear();
            for (auto& deletion : batch)
                deletion();
        }
    }
    return ok;
}

void PluginCalls::deferUntilHostLevel(std::function<void()> deletion) {
    if (depth_ == 0)
        deletion();
    else
        deferred_.push_back(std::move(deletion));
}

void PluginCalls::failed(const std::string& plugin, const std::string& what,
                         const std::string& message) {
    ++failures_;
    const std::string who = plugin.empty() ? "a plug-in" : "plug-in " + plugin;
    reporter_(who + " failed in " + what + ": " + message);
}

} // namespace Galley
