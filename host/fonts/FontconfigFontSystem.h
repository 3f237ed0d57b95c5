#pragma once

#include "host/fonts/FolderTimes.h"
#include "host/fonts/InstalledFace.h"

#include <ctime>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

struct _FcConfig;

namespace Galley {

// The installed faces as fontconfig lists them, from the configuration fontconfig finds
// itself (FONTCONFIG_FILE and friends).
//
// fontconfig's own up-to-date check compares folder times in whole seconds, so a font
// linked within a second of the last load would go unseen. This source remembers the
// nanosecond modification time of every configured and scanned font folder instead.
//
// When folders changed only by gaining files (a font manager activating fonts), the new
// files are added to the loaded configuration: a few FreeType reads instead of reading the
// whole configuration and every folder's cache again. Anything else (a file gone or put in
// another's place, a folder appearing or vanishing) builds a fresh configuration.
//
// Safe to use from several threads: readAhead() takes added files in from a watch's thread
// while the main thread is busy elsewhere (waiting for the font manager's answer, say), and
// load() then finds them read.
class FontconfigFontSystem : public FaceSource {
public:
    FontconfigFontSystem();
    ~FontconfigFontSystem() override;
    FontconfigFontSystem(const FontconfigFontSystem&) = delete;
    FontconfigFontSystem& operator=(const FontconfigFontSystem&) = delete;

    std::vector<InstalledFace> load() override;
    bool changedSinceLoad() override;
    // Every configured and scanned font folder as of the last load.
    std::vector<std::string> watchedFolders() const override;
    void readAhead() override;
    // How many times the whole configuration was read, rather than added files taken in.
    int freshLoads() const;
    // How many files were handed to fontconfig one by one, ahead of a load or in one.
    int filesTakenIn() const;

private:
    FolderTimes::Times snapshotFolders() const;
    void loadAfresh();
    bool addNewFiles(FolderTimes& since);
    bool collectNewFiles(const std::string& folder, std::vector<std::string>& added) const;
    std::vector<InstalledFace> listFaces() const;

    mutable std::mutex mutex_; // over everything below
    _FcConfig* config_ = nullptr;
    FolderTimes folders_;   // every configured and scanned font folder, as of the last load
    FolderTimes readAhead_; // the same, as of the last load or read ahead
    // Every file fontconfig has been given, by path, with its status-change time when it
    // was taken in on its own (none for those of a fresh load, which predate it).
    std::map<std::string, std::optional<std::timespec>> files_;
    std::timespec loadedAt_{}; // when the fresh configuration began to be read
    int freshLoads_ = 0;
    int filesTakenIn_ = 0;
};

} // namespace Galley
