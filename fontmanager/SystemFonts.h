#pragma once

#include "fontmanager/Catalog.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
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
    friend class SystemFontsCache; // reads a kept list back
    void add(SystemFace face);

    std::vector<SystemFace> faces;
    std::multimap<std::string, std::size_t> names;
    std::multimap<std::string, std::size_t> families; // by lowercase family
};

// The system's fonts from one request to the next. Loading fontconfig's configuration and
// font list costs milliseconds, so it is loaded again only when what it was loaded from
// changed: the environment fontconfig reads (FONTCONFIG_FILE and the like), a configuration
// file or font folder (by its modification time in nanoseconds, which fontconfig's own
// check, in whole seconds, misses for a font added in the second of the last load), or the
// folder left out.
//
// With a file to keep it in, the list outlives the server: the next one starts from it when
// nothing it was loaded from changed, so that an application launching the server does not
// wait for fontconfig, nor share the processor with it. A change those times cannot show (a
// configuration file appearing where none was) is caught by loading fontconfig's list once
// more in the background, after `checkDelay`, when the server is likely quiet.
class SystemFontsCache {
public:
    explicit SystemFontsCache(std::filesystem::path keptIn = {},
                              std::chrono::milliseconds checkDelay = std::chrono::seconds(1));
    SystemFontsCache(const SystemFontsCache&) = delete;
    SystemFontsCache& operator=(const SystemFontsCache&) = delete;
    ~SystemFontsCache(); // waits for a load still running in the background

    // Takes the kept list when it still holds, else starts loading the list on a thread of
    // its own, so that the request that first needs it (the one an application sends right
    // after starting the server) finds it ready. `current` takes the result in.
    void preload(const std::filesystem::path& ownFolder);

    const SystemFonts& current(const std::filesystem::path& ownFolder);

private:
    struct Stamp {
        std::filesystem::path path;
        std::int64_t modified; // nanoseconds since the epoch; -1 when it cannot be read
    };
    struct Snapshot {
        SystemFonts fonts;
        std::string environment; // what fontconfig reads of it
        std::filesystem::path folder;
        std::vector<Stamp> stamps;
        bool reloadNext = false; // something changed while the list was being loaded
    };
    static Snapshot load(const std::filesystem::path& ownFolder);
    static bool changed(const Snapshot& snapshot, const std::filesystem::path& ownFolder);
    void startLoading(const std::filesystem::path& ownFolder, std::chrono::milliseconds after);
    void takeInLoaded(bool wait);
    std::optional<Snapshot> readKept() const;
    void keep(const Snapshot& snapshot) const;

    const std::filesystem::path keptIn;
    const std::chrono::milliseconds checkDelay;
    std::optional<Snapshot> loaded;

    // The background load, and its result until `current` takes it in.
    std::thread loader;
    std::mutex mutex;
    std::condition_variable wake;
    bool stopping = false;
    bool loading = false;
    std::optional<Snapshot> background;
    // The background load and `current` may both keep a list at once: one after the other.
    mutable std::mutex keeping;
};

} // namespace Vellumine
