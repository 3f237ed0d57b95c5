#pragma once

#include "fontmanager/Catalog.h"

#include <cstdint>
#include <filesystem>
#include <future>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace Vellumine {

// A face fontconfig lists, with every family and style name it goes by (fontconfig keeps
// localised and typographic names beside the plain ones).
struct SystemFace {
    FaceRecord record; // onSystem, active, id 0; family and style are the first names
    std::vector<std::string> families;
    std::vector<std::string> styles;
};

// The outline fonts the system already has: what fontconfig lists, except the faces in
// vellumine's own activation folder. A font request counts them as present and active, so
// that the application does not take an installed font for a missing one, and vellumine
// never activates a second copy of it.
class SystemFonts {
public:
    // Loads fontconfig's configuration as fontconfig itself finds it (FONTCONFIG_FILE and
    // the rest), afresh, so that fonts installed since the last request are seen. Throws
    // std::runtime_error when fontconfig cannot load it.
    // `watched` receives the configuration files and font folders fontconfig read.
    static SystemFonts fromFontconfig(const std::filesystem::path& ownFolder,
                                      std::vector<std::filesystem::path>* watched = nullptr);

    std::vector<const SystemFace*> byPostScriptName(const std::string& name) const;
    // Ignoring ASCII case, under any of the face's family names.
    std::vector<const SystemFace*> byFamily(const std::string& family) const;
    std::size_t size() const { return faces.size(); }
    const std::vector<SystemFace>& all() const { return faces; }

private:
    void add(SystemFace face);

    std::vector<SystemFace> faces;
    std::multimap<std::string, std::size_t> names;
    std::multimap<std::string, std::size_t> families; // by lowercase family
};

// The system's fonts from one request to the next. Loading fontconfig's configuration and
// font list costs milliseconds, so it is loaded again only when what it was loaded from
// changed: the FONTCONFIG_FILE named, a configuration file or font folder (by its
// modification time in nanoseconds, which fontconfig's own check, in whole seconds,
// misses for a font added in the second of the last load), or the folder left out.
class SystemFontsCache {
public:
    SystemFontsCache() = default;
    SystemFontsCache(const SystemFontsCache&) = delete;
    SystemFontsCache& operator=(const SystemFontsCache&) = delete;
    ~SystemFontsCache(); // waits for a load still running in the background

    // Starts loading the list on a thread of its own, so that the request that first needs
    // it (the one an application sends right after starting the server) finds it ready
    // instead of paying for fontconfig's load. `current` takes the result in.
    void preload(const std::filesystem::path& ownFolder);

    const SystemFonts& current(const std::filesystem::path& ownFolder);

private:
    struct Stamp {
        std::filesystem::path path;
        std::int64_t modified; // nanoseconds since the epoch; -1 when it cannot be read
    };
    struct Snapshot {
        SystemFonts fonts;
        std::string configFile;
        std::filesystem::path folder;
        std::vector<Stamp> stamps;
        bool reloadNext = false; // something changed while the list was being loaded
    };
    static Snapshot load(const std::filesystem::path& ownFolder);
    bool changed(const std::filesystem::path& ownFolder) const;

    std::optional<Snapshot> loaded;
    std::future<Snapshot> preloading;
};

} // namespace Vellumine
