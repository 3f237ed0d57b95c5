#include "fontmanager/SystemFonts.h"

#include "fontmanager/FaceType.h"
#include "foundation/AsciiCase.h"

#include <fontconfig/fontconfig.h>

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <iterator>
#include <memory>
#include <optional>
#include <stdexcept>

namespace Vellumine {

namespace {

std::vector<std::string> strings(FcPattern* pattern, const char* object) {
    std::vector<std::string> values;
    FcChar8* value = nullptr;
    for (int n = 0; FcPatternGetString(pattern, object, n, &value) == FcResultMatch; ++n) {
        values.emplace_back(reinterpret_cast<const char*>(value));
    }
    return values;
}

std::string firstString(FcPattern* pattern, const char* object) {
    FcChar8* value = nullptr;
    return FcPatternGetString(pattern, object, 0, &value) == FcResultMatch
               ? reinterpret_cast<const char*>(value)
               : "";
}

// Whether the file starts like an sfnt (or a collection of them) rather than bare CFF.
bool startsAsSfnt(const std::filesystem::path& file) {
    std::array<char, 4> tag{};
    std::ifstream in(file, std::ios::binary);
    if (!in.read(tag.data(), tag.size())) {
        return false;
    }
    const std::string text(tag.data(), tag.size());
    return text == std::string("\0\1\0\0", 4) || text == "OTTO" || text == "true" || text == "ttcf";
}

// The type vellumine would give the face when added to its library (see FaceReader), from
// what fontconfig learnt of it: FreeType's font format, whether it has outlines, the file
// name. Nothing for faces vellumine does not offer (bitmap fonts, bare CFF).
std::optional<FaceType> classify(const std::string& format, bool outline,
                                 const std::filesystem::path& file) {
    if (format == "Type 1" || format == "CID Type 1") {
        return FaceType::type1;
    }
    std::string extension = AsciiCase::lowered(file.extension().string());
    if (!outline) {
        return std::nullopt;
    }
    if (format == "CFF") {
        // FreeType calls sfnts with CFF outlines and bare CFF alike "CFF"; only files not
        // named like an sfnt are worth reading to tell them apart.
        const bool sfntName = extension == ".otf" || extension == ".otc" || extension == ".ttf" ||
                              extension == ".ttc";
        return sfntName || startsAsSfnt(file) ? std::optional(FaceType::openTypePostScript)
                                              : std::nullopt;
    }
    if (format == "TrueType") {
        return extension == ".otf" ? FaceType::openTypeTrueType : FaceType::trueType;
    }
    return std::nullopt;
}

// fontconfig names files as its configuration names folders; the activation folder may be
// reached through a link, so both spellings count.
class FolderTest {
public:
    explicit FolderTest(const std::filesystem::path& folder) {
        std::error_code ignored;
        spellings = {folder.lexically_normal(), std::filesystem::weakly_canonical(folder, ignored)};
    }

    // Whether `path` is the folder or lies below it.
    bool holds(const std::filesystem::path& path) const {
        const auto normal = path.lexically_normal();
        return std::any_of(spellings.begin(), spellings.end(), [&](const auto& folder) {
            const auto relative = normal.lexically_relative(folder);
            return !folder.empty() && !relative.empty() && *relative.begin() != "..";
        });
    }

private:
    std::vector<std::filesystem::path> spellings;
};

std::optional<SystemFace> systemFace(FcPattern* pattern) {
    SystemFace face;
    FaceRecord& record = face.record;
    record.file = firstString(pattern, FC_FILE);
    record.postScriptName = firstString(pattern, FC_POSTSCRIPT_NAME);
    face.families = strings(pattern, FC_FAMILY);
    face.styles = strings(pattern, FC_STYLE);
    FcBool outline = FcFalse;
    FcPatternGetBool(pattern, FC_OUTLINE, 0, &outline);
    const auto type = classify(firstString(pattern, FC_FONTFORMAT), outline == FcTrue, record.file);
    if (!type || record.file.empty() || record.postScriptName.empty() || face.families.empty()) {
        return std::nullopt;
    }
    int index = 0;
    FcPatternGetInteger(pattern, FC_INDEX, 0, &index);
    record.faceIndex = index;
    record.type = *type;
    record.family = face.families.front();
    record.style = face.styles.empty() ? "" : face.styles.front();
    record.active = true;
    record.onSystem = true;
    return face;
}

struct ConfigDeleter {
    void operator()(FcConfig* config) const { FcConfigDestroy(config); }
};

void addStrings(FcStrList* list, std::vector<std::filesystem::path>& paths) {
    while (FcChar8* text = FcStrListNext(list)) {
        paths.emplace_back(reinterpret_cast<const char*>(text));
    }
    FcStrListDone(list);
}

std::int64_t modifiedNanoseconds(const std::filesystem::path& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) {
        return -1;
    }
    return std::int64_t(status.st_mtim.tv_sec) * 1'000'000'000 + status.st_mtim.tv_nsec;
}

// On the clock file times come from: the kernel stamps them with its tick-coarse clock, so a
// change made just after a fine-grained "now" could carry an earlier time and go unseen.
std::int64_t nowNanoseconds() {
    timespec now{};
    clock_gettime(CLOCK_REALTIME_COARSE, &now);
    return std::int64_t(now.tv_sec) * 1'000'000'000 + now.tv_nsec;
}

std::string environmentValue(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

// What of the environment decides which configuration fontconfig reads.
std::string fontconfigEnvironment() {
    std::string text;
    for (const char* name : {"FONTCONFIG_FILE", "FONTCONFIG_PATH", "FONTCONFIG_SYSROOT", "HOME",
                             "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME"}) {
        text += std::string(name) + "=" + environmentValue(name) + "\n";
    }
    return text;
}

} // namespace

SystemFonts SystemFonts::fromFontconfig(const std::filesystem::path& ownFolder,
                                        std::vector<std::filesystem::path>* watched) {
    const std::unique_ptr<FcConfig, ConfigDeleter> config(FcInitLoadConfigAndFonts());
    if (!config) {
        throw std::runtime_error("fontconfig could not load its configuration");
    }
    const FolderTest own(ownFolder);
    if (watched != nullptr) {
        addStrings(FcConfigGetConfigFiles(config.get()), *watched);
        std::vector<std::filesystem::path> folders;
        addStrings(FcConfigGetFontDirs(config.get()), folders);
        // Activations change vellumine's own folder, whose faces are left out anyway.
        std::copy_if(folders.begin(), folders.end(), std::back_inserter(*watched),
                     [&](const auto& folder) { return !own.holds(folder); });
    }
    SystemFonts fonts;
    FcFontSet* set = FcConfigGetFonts(config.get(), FcSetSystem);
    for (int i = 0; set != nullptr && i < set->nfont; ++i) {
        auto face = systemFace(set->fonts[i]);
        if (face && !own.holds(face->record.file)) {
            fonts.add(std::move(*face));
        }
    }
    return fonts;
}

void SystemFonts::add(SystemFace face) {
    const std::size_t at = faces.size();
    names.emplace(face.record.postScriptName, at);
    for (const auto& family : face.families) {
        families.emplace(AsciiCase::lowered(family), at);
    }
    faces.push_back(std::move(face));
}

namespace {

std::vector<const SystemFace*> found(const std::vector<SystemFace>& faces,
                                     const std::multimap<std::string, std::size_t>& index,
                                     const std::string& key) {
    std::vector<const SystemFace*> result;
    const auto [first, last] = index.equal_range(key);
    for (auto entry = first; entry != last; ++entry) {
        const SystemFace* face = &faces[entry->second];
        // A face listing one family twice (in two languages, say) is still one face.
        if (std::find(result.begin(), result.end(), face) == result.end()) {
            result.push_back(face);
        }
    }
    return result;
}

} // namespace

std::vector<const SystemFace*> SystemFonts::byPostScriptName(const std::string& name) const {
    return found(faces, names, name);
}

std::vector<const SystemFace*> SystemFonts::byFamily(const std::string& family) const {
    return found(faces, families, AsciiCase::lowered(family));
}

SystemFontsCache::SystemFontsCache(std::filesystem::path keptIn,
                                   std::chrono::milliseconds checkDelay)
    : keptIn(std::move(keptIn)), checkDelay(checkDelay) {}

SystemFontsCache::~SystemFontsCache() {
    {
        std::lock_guard<std::mutex> lock(mutex);
        stopping = true;
    }
    wake.notify_all();
    if (loader.joinable()) {
        loader.join();
    }
}

void SystemFontsCache::preload(const std::filesystem::path& ownFolder) {
    if (loaded || loader.joinable()) {
        return;
    }
    if (auto kept = readKept(); kept && !changed(*kept, ownFolder)) {
        loaded = std::move(kept);
        startLoading(ownFolder, checkDelay);
    } else {
        startLoading(ownFolder, std::chrono::milliseconds(0));
    }
}

void SystemFontsCache::startLoading(const std::filesystem::path& ownFolder,
                                    std::chrono::milliseconds after) {
    loading = true;
    loader = std::thread([this, ownFolder, after] {
        {
            std::unique_lock<std::mutex> lock(mutex);
            if (wake.wait_for(lock, after, [this] { return stopping; })) {
                loading = false;
                return;
            }
        }
        std::optional<Snapshot> snapshot;
        try {
            snapshot = load(ownFolder);
            keep(*snapshot);
        } catch (const std::exception&) {
            // No list: `current` loads it again, and the request that needs it hears why.
        }
        std::lock_guard<std::mutex> lock(mutex);
        background = std::move(snapshot);
        loading = false;
        wake.notify_all();
    });
}

// The background load's result, when there is one; with `wait`, waits for a load under way.
void SystemFontsCache::takeInLoaded(bool wait) {
    std::unique_lock<std::mutex> lock(mutex);
    if (wait) {
        wake.wait(lock, [this] { return !loading; });
    }
    if (loading) {
        return;
    }
    if (background) {
        loaded = std::move(background);
        background.reset();
    }
    lock.unlock();
    if (loader.joinable()) {
        loader.join();
    }
}

SystemFontsCache::Snapshot SystemFontsCache::load(const std::filesystem::path& ownFolder) {
    Snapshot snapshot;
    const std::int64_t loadStart = nowNanoseconds();
    std::vector<std::filesystem::path> watched;
    snapshot.fonts = SystemFonts::fromFontconfig(ownFolder, &watched);
    snapshot.environment = fontconfigEnvironment();
    snapshot.folder = ownFolder;
    for (auto& path : watched) {
        const std::int64_t modified = modifiedNanoseconds(path);
        // Changed while fontconfig was reading: maybe before, maybe after it looked.
        snapshot.reloadNext = snapshot.reloadNext || modified >= loadStart;
        snapshot.stamps.push_back({std::move(path), modified});
    }
    return snapshot;
}

bool SystemFontsCache::changed(const Snapshot& snapshot, const std::filesystem::path& ownFolder) {
    return snapshot.reloadNext || snapshot.environment != fontconfigEnvironment() ||
           snapshot.folder != ownFolder ||
           std::any_of(snapshot.stamps.begin(), snapshot.stamps.end(), [](const Stamp& stamp) {
               return modifiedNanoseconds(stamp.path) != stamp.modified;
           });
}

const SystemFonts& SystemFontsCache::current(const std::filesystem::path& ownFolder) {
    // Without a list yet, the one loading is waited for; a kept list serves meanwhile.
    takeInLoaded(!loaded);
    if (loaded && !changed(*loaded, ownFolder)) {
        return loaded->fonts;
    }
    loaded.reset();
    loaded = load(ownFolder);
    keep(*loaded);
    return loaded->fonts;
}

} // namespace Vellumine
