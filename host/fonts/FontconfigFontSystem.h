#pragma once

#include "host/fonts/InstalledFace.h"

#include <ctime>
#include <map>
#include <string>
#include <vector>

struct _FcConfig;

namespace Galley {

// The installed faces as fontconfig lists them, from the configuration fontconfig finds
// itself (FONTCONFIG_FILE and friends).
//
// fontconfig's own up-to-date check compares folder times in whole seconds, so a font
// linked within a second of the last load would go unseen. This source remembers the
// nanosecond modification time of every configured and scanned font folder instead, and
// builds a fresh configuration when any of them changed, appeared or vanished.
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

private:
    using FolderTimes = std::map<std::string, std::timespec>;
    FolderTimes snapshotFolders() const;

    _FcConfig* config_ = nullptr;
    FolderTimes folders_;
};

} // namespace Galley
