#pragma once

#include "host/base/PluginCalls.h"
#include "host/plugins/PluginRegistrations.h"

#include <memory>
#include <string>
#include <vector>

namespace Galley {

// One plug-in library and how far it got. A later step does nothing after a failure; a
// library whose entry ran is never unloaded (its code may still be referenced).
struct LoadedPlugin {
    enum class State { found, loaded, registered, running, stopped, failed };

    std::string path;
    std::string resourceFolder; // where its descriptions and string tables are
    void* handle = nullptr;
    State state = State::found;
    std::string firstError;
    PluginRegistrations registrations;

    const std::string& name() const {
        return registrations.name.empty() ? path : registrations.name;
    }
};

// Finds plug-ins in folders and loads them in steps: dlopen (RTLD_NOW), the exported SDK
// version, then the entry point with a registry. Each refusal is reported once as
// "plug-in PATH was not loaded: REASON" and the host runs on without that plug-in.
class PluginLoader {
public:
    explicit PluginLoader(PluginCalls& calls) : calls_(calls) {}

    // The folders Galley searches, in order: each entry of $GALLEY_PLUGIN_PATH (a folder or
    // a library), then the build tree's plug-in folder (when Galley runs from the build tree),
    // then lib/galley/plug-ins beside the installed executable.
    static std::vector<std::string> defaultSearchPath(const std::string& executablePath);

    // Loads every "*.so" of the folders (and library paths given directly), in name order
    // per folder; a library whose file name was loaded already is skipped.
    std::vector<std::unique_ptr<LoadedPlugin>> loadAll(const std::vector<std::string>& searchPath);
    // Loads one library; the result says how far it got.
    std::unique_ptr<LoadedPlugin> load(const std::string& path);

private:
    void refuse(LoadedPlugin& plugin, const std::string& reason);

    PluginCalls& calls_;
};

} // namespace Galley
