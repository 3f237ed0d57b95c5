#pragma once

#include "host/idml/XmlPart.h"

#include <string>
#include <vector>

namespace Galley {

// designmap.xml: the format revision and where the package keeps its fonts, styles and
// stories.
struct DesignMap {
    std::string domVersion; // empty when the document does not state one
    std::string fontsPart = "Resources/Fonts.xml";
    std::string stylesPart = "Resources/Styles.xml";
    std::vector<std::string> storyParts; // in the document's order, each once

    static DesignMap parse(const std::string& file, xmlDoc* doc);
};

// Galley reads IDML of DOM version 7.0 and later natively. Older packages (DOM versions
// before 7.0, and packages that state no version) are converted on open: their fonts and
// text are read the same way, but the document reports itself as converted.
inline constexpr int kNativeDomVersionMajor = 7;
bool isConvertedOnOpen(const std::string& domVersion);

} // namespace Galley
