#pragma once

#include "fontmanager/Catalog.h"

#include <filesystem>
#include <map>
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
    static SystemFonts fromFontconfig(const std::filesystem::path& ownFolder);

    std::vector<const SystemFace*> byPostScriptName(const std::string& name) const;
    // Ignoring ASCII case, under any of the face's family names.
    std::vector<const SystemFace*> byFamily(const std::string& family) const;
    std::size_t size() const { return faces.size(); }

private:
    void add(SystemFace face);

    std::vector<SystemFace> faces;
    std::multimap<std::string, std::size_t> names;
    std::multimap<std::string, std::size_t> families; // by lowercase family
};

} // namespace Vellumine
