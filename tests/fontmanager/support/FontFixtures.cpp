#include "FontFixtures.h"

#include <fontconfig/fontconfig.h>

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace VellumineTest {

ScratchFolder::ScratchFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "vellumine-test-XXXXXX");
    if (mkdtemp(pattern.data()) == nullptr) {
        throw std::runtime_error("cannot make a scratch folder");
    }
    root = pattern;
}

ScratchFolder::~ScratchFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(root, ignored);
}

std::filesystem::path ScratchFolder::write(const std::string& name,
                                           const std::string& bytes) const {
    const auto file = root / name;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << bytes;
    return file;
}

PrivateFontconfig::PrivateFontconfig(const std::vector<std::filesystem::path>& folders) {
    std::string config = "<?xml version=\"1.0\"?>\n<fontconfig>\n";
    for (const auto& folder : folders) {
        config += "<dir>" + folder.string() + "</dir>\n";
    }
    config += "<cachedir>" + (scratch.path() / "cache").string() + "</cachedir>\n</fontconfig>\n";
    scratch.write("fonts.conf", config);
    if (const char* old = std::getenv("FONTCONFIG_FILE")) {
        hadPrevious = true;
        previous = old;
    }
    setenv("FONTCONFIG_FILE", file().c_str(), 1);
}

PrivateFontconfig::~PrivateFontconfig() {
    hadPrevious ? setenv("FONTCONFIG_FILE", previous.c_str(), 1) : unsetenv("FONTCONFIG_FILE");
}

int PrivateFontconfig::facesNamed(const std::string& postScriptName) const {
    FcConfig* config = FcConfigCreate();
    FcConfigParseAndLoad(config, reinterpret_cast<const FcChar8*>(file().c_str()), FcTrue);
    FcConfigBuildFonts(config);
    FcPattern* pattern = FcPatternCreate();
    FcPatternAddString(pattern, FC_POSTSCRIPT_NAME,
                       reinterpret_cast<const FcChar8*>(postScriptName.c_str()));
    FcObjectSet* objects = FcObjectSetBuild(FC_FILE, nullptr);
    FcFontSet* fonts = FcFontList(config, pattern, objects);
    const int count = fonts != nullptr ? fonts->nfont : -1;
    FcFontSetDestroy(fonts);
    FcObjectSetDestroy(objects);
    FcPatternDestroy(pattern);
    FcConfigDestroy(config);
    return count;
}

std::string readFile(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    std::ostringstream bytes;
    bytes << in.rdbuf();
    return bytes.str();
}

void usePrivateXdgFolders(const std::filesystem::path& root) {
    std::filesystem::create_directories(root / "runtime");
    std::filesystem::permissions(root / "runtime", std::filesystem::perms::owner_all);
    setenv("XDG_DATA_HOME", (root / "data").c_str(), 1);
    setenv("XDG_RUNTIME_DIR", (root / "runtime").c_str(), 1);
    // The library is the private world's own SQLite file unless a test says otherwise.
    setenv("XDG_CONFIG_HOME", (root / "config").c_str(), 1);
    setenv("XDG_CACHE_HOME", (root / "cache").c_str(), 1);
    unsetenv("VELLUMINE_LIBRARY");
}

bool absent(const std::filesystem::path& path) {
    return !std::filesystem::exists(std::filesystem::symlink_status(path));
}

namespace {

std::uint32_t read32(const std::string& bytes, std::size_t at) {
    return (std::uint32_t(std::uint8_t(bytes[at])) << 24) |
           (std::uint32_t(std::uint8_t(bytes[at + 1])) << 16) |
           (std::uint32_t(std::uint8_t(bytes[at + 2])) << 8) |
           std::uint32_t(std::uint8_t(bytes[at + 3]));
}

void write32(std::string& bytes, std::size_t at, std::uint32_t value) {
    for (int i = 0; i < 4; ++i) {
        bytes[at + i] = char((value >> (24 - 8 * i)) & 0xFF);
    }
}

} // namespace

std::string makeCollection(const std::vector<std::filesystem::path>& fonts) {
    const std::size_t headerSize = 12 + 4 * fonts.size();
    std::string collection(headerSize, '\0');
    collection.replace(0, 4, "ttcf");
    write32(collection, 4, 0x00010000);
    write32(collection, 8, static_cast<std::uint32_t>(fonts.size()));
    for (std::size_t i = 0; i < fonts.size(); ++i) {
        std::string font = readFile(fonts[i]);
        const std::size_t base = collection.size();
        const std::uint16_t tables =
            std::uint16_t((std::uint8_t(font[4]) << 8) | std::uint8_t(font[5]));
        for (std::size_t table = 0; table < tables; ++table) {
            const std::size_t record = 12 + 16 * table;
            write32(font, record + 8, read32(font, record + 8) + std::uint32_t(base));
        }
        write32(collection, 12 + 4 * i, static_cast<std::uint32_t>(base));
        collection += font;
        collection.append((4 - collection.size() % 4) % 4, '\0');
    }
    return collection;
}

} // namespace VellumineTest
