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
    // The PostScript name of the installed face, else the one Fonts.xml records; empty when
    // neither is known.
    std::string postscriptName(const FontKey& key) const;
    // What tells this face apart from the document's other faces wherever a PostScript name
    // serves as a face's identity (the SDK's GetFacePostScriptName): its PostScript name, or,
    // for a face the document names by family and style alone (as exports do for a font that
    // was missing where they were made), the name PostScript tools would derive from them,
    // "Family-Style" without blanks. Never empty and never with a blank, so that plug-ins
    // that find and replace faces by PostScript name reach these faces too.
    std::string identity(const FontKey& key) const;
    IPMFont::FontType type(const FontKey& key) const;

private:
    const FontsCatalog& catalog_;
    const SessionFontMgr& fonts_;
};

} // namespace Galley
