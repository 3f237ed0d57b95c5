#include "host/fonts/FontconfigFontSystem.h"

#include "host/fonts/FolderTimes.h"
#include "host/fonts/FontTypes.h"

#include <dirent.h>
#include <fontconfig/fontconfig.h>
#include <sys/stat.h>

#include <ctime>
#include <memory>
#include <set>
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

void addFolders(FcStrList* list, std::vector<std::string>& out) {
    std::unique_ptr<FcStrList, StrListFree> owner(list);
    while (FcChar8* folder = FcStrListNext(list))
        out.emplace_back(reinterpret_cast<const char*>(folder));
}

std::optional<std::timespec> statusChanged(const std::string& path) {
    struct stat info {};
    if (::lstat(path.c_str(), &info) != 0)
        return std::nullopt;
    return info.st_ctim;
}

bool isFolder(const std::string& path) {
    struct stat info {};
    return ::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

struct FolderClose {
    void operator()(DIR* folder) const { closedir(folder); }
};

} // namespace

FontconfigFontSystem::FontconfigFontSystem() = default;

FontconfigFontSystem::~FontconfigFontSystem() {
    if (config_)
        FcConfigDestroy(config_);
}

std::vector<InstalledFace> FontconfigFontSystem::load() {
    std::lock_guard<std::mutex> lock(mutex_);
    if (!config_ || !addNewFiles(folders_))
        loadAfresh();
    readAhead_ = folders_;
    return listFaces();
}

void FontconfigFontSystem::readAhead() {
    std::lock_guard<std::mutex> lock(mutex_);
    // Anything but added files is left to load(), which builds a fresh configuration.
    if (config_)
        addNewFiles(readAhead_);
}

int FontconfigFontSystem::freshLoads() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return freshLoads_;
}

int FontconfigFontSystem::filesTakenIn() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return filesTakenIn_;
}

void FontconfigFontSystem::loadAfresh() {
    ++freshLoads_;
    const std::timespec start = FileTimes::coarseNow();
    FcConfig* fresh = FcInitLoadConfigAndFonts();
    if (!fresh)
        throw std::runtime_error("fontconfig: cannot load the font configuration");
    if (config_)
        FcConfigDestroy(config_);
    config_ = fresh;
    loadedAt_ = start;
    folders_ = FolderTimes();
    folders_.takeIn(snapshotFolders(), start);
    files_.clear();
    FcFontSet* set = FcConfigGetFonts(config_, FcSetSystem);
    for (int i = 0; set && i < set->nfont; ++i)
        files_.emplace(firstString(set->fonts[i], FC_FILE), std::nullopt);
}

// Hands fontconfig the files that appeared in the folders changed `since`, and takes the
// folders' times in. False, with nothing done, when a folder changed in any other way, which
// load() answers with a fresh configuration. Files read ahead are known and not read again.
bool FontconfigFontSystem::addNewFiles(FolderTimes& since) {
    const std::timespec start = FileTimes::coarseNow();
    FolderTimes::Times now = snapshotFolders();
    if (now.size() != since.times().size())
        return false;
    std::vector<std::string> added;
    for (const auto& folder : since.changedIn(now)) {
        const auto before = since.times().find(folder);
        if (before == since.times().end())
            return false;
        if (FileTimes::same(before->second, std::timespec{}))
            return false; // a configured folder appeared: it may hold further folders
        if (!collectNewFiles(folder, added))
            return false;
    }
    for (const auto& file : added) {
        // Not a font (a fonts.dir, say): fontconfig says no, and it is not asked again.
        FcConfigAppFontAddFile(config_, reinterpret_cast<const FcChar8*>(file.c_str()));
        files_[file] = statusChanged(file);
        ++filesTakenIn_;
    }
    since.takeIn(std::move(now), start);
    return true;
}

// The entries of `folder` that fontconfig was not given yet; false when one it was given is
// gone or was put in place since, or when a folder appeared.
bool FontconfigFontSystem::collectNewFiles(const std::string& folder,
                                           std::vector<std::string>& added) const {
    std::unique_ptr<DIR, FolderClose> listing(opendir(folder.c_str()));
    if (!listing)
        return false;
    const std::string prefix = folder + "/";
    std::set<std::string> present;
    while (const dirent* entry = readdir(listing.get())) {
        const std::string name = entry->d_name;
        if (name.empty() || name.front() == '.') // fontconfig passes over hidden entries too
            continue;
        const std::string path = prefix + name;
        const auto changed = statusChanged(path);
        if (!changed)
            continue; // gone again: counted below if fontconfig had it
        const auto known = files_.find(path);
        if (known == files_.end()) {
            if (isFolder(path)) {
                if (folders_.times().count(path))
                    continue; // scanned already, and looked at on its own
                return false;
            }
            added.push_back(path);
            continue;
        }
        present.insert(path);
        const bool replaced = known->second ? !FileTimes::same(*known->second, *changed)
                                            : !FileTimes::earlier(*changed, loadedAt_);
        if (replaced)
            return false;
    }
    for (auto known = files_.lower_bound(prefix);
         known != files_.end() && known->first.compare(0, prefix.size(), prefix) == 0; ++known) {
        const bool inThisFolder = known->first.find('/', prefix.size()) == std::string::npos;
        if (inThisFolder && !present.count(known->first))
            return false;
    }
    return true;
}

std::vector<InstalledFace> FontconfigFontSystem::listFaces() const {
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
    std::lock_guard<std::mutex> lock(mutex_);
    return !config_ || folders_.differ(snapshotFolders());
}

std::vector<std::string> FontconfigFontSystem::watchedFolders() const {
    std::lock_guard<std::mutex> lock(mutex_);
    std::vector<std::string> folders;
    for (const auto& [folder, time] : folders_.times())
        folders.push_back(folder);
    return folders;
}

FolderTimes::Times FontconfigFontSystem::snapshotFolders() const {
    std::vector<std::string> folders;
    addFolders(FcConfigGetConfigDirs(config_), folders);
    addFolders(FcConfigGetFontDirs(config_), folders);
    return FolderTimes::look(folders);
}

} // namespace Galley
