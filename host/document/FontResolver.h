#pragma once

#include "host/idml/FontReference.h"
#include "sdk/IPMFont.h"

#include <string>

namespace Galley {

class FontsCatalog;
class InstalledFont;
class SessionFontMgr;

// Ties a face the document names to what the system has. The document's PostScript name
// (from Fonts.xml) decides when it gives one; otherwise family and style do. A face the
// system lacks keeps what Fonts.xml says about it.
class FontResolver {
public:
    FontResolver(const FontsCatalog& catalog, const SessionFontMgr& fonts)
        : catalog_(catalog), fonts_(fonts) {}

    // Null when the face is missing.
    InstalledFont* installed(const FontKey& key) const;
    std::string postscriptName(const FontKey& key) const;
    IPMFont::FontType type(const FontKey& key) const;

private:
    const FontsCatalog& catalog_;
    const SessionFontMgr& fonts_;
};

} // namespace Galley
