#include "host/fonts/FontconfigFontSystem.h"

#include "host/fonts/FontTypes.h"

#include <fontconfig/fontconfig.h>
#include <sys/stat.h>

#include <memory>
#include <stdexcept>

namespace Galley {

namespace {

struct PatternFree {
    void operator()(FcPattern* p) const { FcPatternDestroy(p); }
};
struct ObjectSetFree {
    void operator()(FcObjectSet* s) const { FcObjectSetDestroy(s); }
};
struct FontSetFree {
    void operator()(FcFontSet* s) const { FcFontSetDestroy(s); }
};
struct StrListFree {
    void operator()(FcStrList* l) const { FcStrListDone(l); }
};

std::vector<std::string> strings(FcPattern* pattern, const char* object) {
    std::vector<std::string> values;
    FcChar8* value = nullptr;
    for (int i = 0; FcPatternGetString(pattern, object, i, &value) == FcResultMatch; ++i)
        values.emplace_back(reinterpret_cast<const char*>(value));
    return values;
}

std::string firstString(FcPattern* pattern, const char* object) {
    auto values = strings(pattern, object);
    return values.empty() ? std::string() : values.front();
}

InstalledFace faceFrom(FcPattern* pattern) {
    InstalledFace face;
    face.postscriptName = firstString(pattern, FC_POSTSCRIPT_NAME);
    face.families = strings(pattern, FC_FAMILY);
    face.styles = strings(pattern, FC_STYLE);
    face.fullName = firstString(pattern, FC_FULLNAME);
    face.file = firstString(pattern, FC_FILE);
    FcPatternGetInteger(pattern, FC_INDEX, 0, &face.index);
    FcBool outline = FcTrue;
    FcPatternGetBool(pattern, FC_OUTLINE, 0, &outline);
    face.outline = outline == FcTrue;
    face.type = fontTypeFromFontconfig(firstString(pattern, FC_FONTFORMAT), face.file);
    if (face.families.empty())
        face.families.push_back(face.postscriptName);
    if (face.styles.empty())
        face.styles.push_back("Regular");
    return face;
}

void addFolders(FcStrList* list, std::map<std::string, std::timespec>& out) {
    std::unique_ptr<FcStrList, StrListFree> owner(list);
    while (FcChar8* folder = FcStrListNext(list)) {
        std::string path(reinterpret_cast<const char*>(folder));
        struct stat info {};
        // A folder that does not exist yet is remembered as time zero, so that its
        // creation counts as a change.
        out[path] = ::stat(path.c_str(), &info) == 0 ? info.st_mtim : std::timespec{};
    }
}

bool sameTimes(const std::map<std::string, std::timespec>& a,
               const std::map<std::string, std::timespec>& b) {
    if (a.size() != b.size())
        return false;
    for (auto ia = a.begin(), ib = b.begin(); ia != a.end(); ++ia, ++ib) {
        if (ia->first != ib->first || ia->second.tv_sec != ib->second.tv_sec ||
            ia->second.tv_nsec != ib->second.tv_nsec)
            return false;
    }
    return true;
}

} // namespace

FontconfigFontSystem::FontconfigFontSystem() = default;

FontconfigFontSystem::~FontconfigFontSystem() {
    if (config_)
        FcConfigDestroy(config_);
}

std::vector<InstalledFace> FontconfigFontSystem::load() {
    FcConfig* fresh = FcInitLoadConfigAndFonts();
    if (!fresh)
        throw std::runtime_error("fontconfig: cannot load the font configuration");
    if (config_)
        FcConfigDestroy(config_);
    config_ = fresh;
    folders_ = snapshotFolders();

    std::unique_ptr<FcPattern, PatternFree> all(FcPatternCreate());
    std::unique_ptr<FcObjectSet, ObjectSetFree> objects(
        FcObjectSetBuild(FC_POSTSCRIPT_NAME, FC_FAMILY, FC_STYLE, FC_FULLNAME, FC_FILE, FC_INDEX,
                         FC_OUTLINE, FC_FONTFORMAT, nullptr));
    std::unique_ptr<FcFontSet, FontSetFree> set(FcFontList(config_, all.get(), objects.get()));
    std::vector<InstalledFace> faces;
    for (int i = 0; set && i < set->nfont; ++i)
        faces.push_back(faceFrom(set->fonts[i]));
    return faces;
}

bool FontconfigFontSystem::changedSinceLoad() {
    return !config_ || !sameTimes(folders_, snapshotFolders());
}

std::vector<std::string> FontconfigFontSystem::watchedFolders() const {
    std::vector<std::string> folders;
    for (const auto& [folder, time] : folders_)
        folders.push_back(folder);
    return folders;
}

FontconfigFontSystem::FolderTimes FontconfigFontSystem::snapshotFolders() const {
    FolderTimes times;
    addFolders(FcConfigGetConfigDirs(config_), times);
    addFolders(FcConfigGetFontDirs(config_), times);
    return times;
}

} // namespace Galley
