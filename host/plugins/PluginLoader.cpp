#include "host/plugins/PluginLoader.h"

#include <dlfcn.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <sstream>

namespace Galley {

namespace fs = std::filesystem;

namespace {

bool isLibrary(const fs::path& path) {
    return path.extension() == ".so";
}

// "libvellumine-link.so" -> "vellumine-link"
std::string stemOf(const fs::path& library) {
    std::string stem = library.stem().string();
    return stem.rfind("lib", 0) == 0 ? stem.substr(3) : stem;
}

std::string resourceFolderFor(const fs::path& library) {
    const std::string stem = stemOf(library);
    const fs::path beside = library.parent_path() / stem;
    const fs::path shared = library.parent_path() / ".." / ".." / ".." / "share" / "galley" / stem;
    std::error_code ignored;
    if (!fs::is_directory(beside, ignored) && fs::is_directory(shared, ignored))
        return fs::weakly_canonical(shared, ignored).string();
    return beside.string();
}

std::vector<fs::path> librariesIn(const std::string& entry) {
    std::vector<fs::path> found;
    std::error_code error;
    if (fs::is_directory(entry, error)) {
        for (const auto& item : fs::directory_iterator(entry, error))
            if (isLibrary(item.path()))
                found.push_back(item.path());
        std::sort(found.begin(), found.end());
    } else if (fs::exists(entry, error)) {
        found.emplace_back(entry);
    }
    return found;
}

} // namespace

std::vector<std::string> PluginLoader::defaultSearchPath(const std::string& executablePath) {
    std::vector<std::string> path;
    if (const char* list = std::getenv("GALLEY_PLUGIN_PATH")) {
        std::stringstream entries(list);
        for (std::string entry; std::getline(entries, entry, ':');)
            if (!entry.empty())
                path.push_back(entry);
    }
    std::error_code ignored;
    const fs::path exeDir = fs::weakly_canonical(executablePath, ignored).parent_path();
#ifdef GALLEY_BUILD_TREE_PLUGIN_DIR
    // Only a galley that was built here looks into the build tree.
    if (fs::equivalent(exeDir, GALLEY_BUILD_TREE_EXE_DIR, ignored))
        path.push_back(GALLEY_BUILD_TREE_PLUGIN_DIR);
#endif
    path.push_back((exeDir / ".." / "lib" / "galley" / "plug-ins").lexically_normal().string());
    return path;
}

std::vector<std::unique_ptr<LoadedPlugin>>
PluginLoader::loadAll(const std::vector<std::string>& searchPath) {
    std::vector<std::unique_ptr<LoadedPlugin>> plugins;
    std::set<std::string> fileNames;
    for (const auto& entry : searchPath) {
        for (const auto& library : librariesIn(entry)) {
            if (!fileNames.insert(library.filename().string()).second)
                continue;
            plugins.push_back(load(library.string()));
        }
    }
    return plugins;
}

void PluginLoader::refuse(LoadedPlugin& plugin, const std::string& reason) {
    plugin.state = LoadedPlugin::State::failed;
    if (plugin.firstError.empty()) {
        plugin.firstError = reason;
        calls_.report("plug-in " + plugin.path + " was not loaded: " + reason);
    }
}

std::unique_ptr<LoadedPlugin> PluginLoader::load(const std::string& path) {
    auto plugin = std::make_unique<LoadedPlugin>();
    plugin->path = path;
    plugin->resourceFolder = resourceFolderFor(path);

    plugin->handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!plugin->handle) {
        const char* reason = dlerror();
        refuse(*plugin, reason ? reason : "it cannot be opened");
        return plugin;
    }
    plugin->state = LoadedPlugin::State::loaded;

    const auto* version =
        static_cast<const uint32*>(dlsym(plugin->handle, GALLEY_PLUGIN_VERSION_SYMBOL));
    if (!version) {
        dlclose(plugin->handle); // nothing of it has run yet
        plugin->handle = nullptr;
        refuse(*plugin, "it exports no SDK version (" GALLEY_PLUGIN_VERSION_SYMBOL
                        "); it is not a Galley plug-in");
        return plugin;
    }
    if (*version != kGalleySDKVersion) {
        const std::string reason = "it was built for SDK version " + std::to_string(*version) +
                                   ", this Galley has version " + std::to_string(kGalleySDKVersion);
        dlclose(plugin->handle);
        plugin->handle = nullptr;
        refuse(*plugin, reason);
        return plugin;
    }
    auto entry =
        reinterpret_cast<GalleyPluginEntry>(dlsym(plugin->handle, GALLEY_PLUGIN_ENTRY_SYMBOL));
    if (!entry) {
        dlclose(plugin->handle);
        plugin->handle = nullptr;
        refuse(*plugin, "it has no entry point (" GALLEY_PLUGIN_ENTRY_SYMBOL ")");
        return plugin;
    }
    const bool ok = calls_.guarded(path, "its entry point", [&] { entry(&plugin->registrations); });
    if (!ok) {
        refuse(*plugin, "its entry point failed");
        return plugin;
    }
    if (!plugin->registrations.error.empty()) {
        refuse(*plugin, plugin->registrations.error);
        return plugin;
    }
    plugin->state = LoadedPlugin::State::registered;
    return plugin;
}

} // namespace Galley
