#pragma once

#include "sdk/IPMFont.h"

#include <string>
#include <vector>

namespace Galley {

// One face the font system lists.
struct InstalledFace {
    std::string postscriptName;
    std::vector<std::string> families; // first is the one shown; others are alternates
    std::vector<std::string> styles;
    std::string fullName;
    std::string file;
    int index = 0; // face index within the file
    IPMFont::FontType type = IPMFont::kUnknownFontType;
    bool outline = true;

    const std::string& family() const { return families.front(); }
    const std::string& style() const { return styles.front(); }
    std::string identity() const { return file + "#" + std::to_string(index); }
};

// Where the installed faces come from: fontconfig in Galley, a fixed list in tests.
class FaceSource {
public:
    virtual ~FaceSource() = default;
    virtual std::vector<InstalledFace> load() = 0;
    // True when the faces may have changed since the last load.
    virtual bool changedSinceLoad() = 0;
    // The folders whose changes can change the faces (for a watch); empty when unknown.
    virtual std::vector<std::string> watchedFolders() const { return {}; }
    // Called from a folder watch's own thread when it saw the folders change: reads what it
    // safely can now, so that the next load() finds it read. Sources that do not say they
    // are safe to call from another thread leave this empty.
    virtual void readAhead() {}
};

} // namespace Galley
