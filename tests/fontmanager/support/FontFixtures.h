#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace VellumineTest {

// Fonts from the Debian packages the project depends on (fonts-urw-base35,
// fonts-dejavu-core). Many URW faces exist both as Type 1 and as OpenType CFF.
inline const std::filesystem::path urwType1Folder = "/usr/share/fonts/type1/urw-base35";
inline const std::filesystem::path urwOpenTypeFolder = "/usr/share/fonts/opentype/urw-base35";
inline const std::filesystem::path dejaVuFolder = "/usr/share/fonts/truetype/dejavu";
inline const std::filesystem::path nimbusRomanType1 = urwType1Folder / "NimbusRoman-Regular.t1";
inline const std::filesystem::path nimbusRomanOpenType =
    urwOpenTypeFolder / "NimbusRoman-Regular.otf";
inline const std::filesystem::path dejaVuSans = dejaVuFolder / "DejaVuSans.ttf";
inline const std::filesystem::path dejaVuSerif = dejaVuFolder / "DejaVuSerif.ttf";

// A fresh folder below the system's temporary folder, removed with everything in it.
class ScratchFolder {
public:
    ScratchFolder();
    ~ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    const std::filesystem::path& path() const { return root; }
    std::filesystem::path write(const std::string& name, const std::string& bytes) const;

private:
    std::filesystem::path root;
};

// Points FONTCONFIG_FILE, for this process and those it starts, at a configuration that
// scans only `folders`, so that vellumine sees these as the system's fonts and nothing of
// the machine's; the previous value comes back on destruction.
class PrivateFontconfig {
public:
    explicit PrivateFontconfig(const std::vector<std::filesystem::path>& folders = {});
    ~PrivateFontconfig();
    PrivateFontconfig(const PrivateFontconfig&) = delete;
    PrivateFontconfig& operator=(const PrivateFontconfig&) = delete;

    std::filesystem::path file() const { return scratch.path() / "fonts.conf"; }
    // How many faces fontconfig lists with this PostScript name on this configuration,
    // loaded afresh (what a newly started application would see); -1 when it cannot say.
    int facesNamed(const std::string& postScriptName) const;

private:
    ScratchFolder scratch;
    bool hadPrevious = false;
    std::string previous;
};

std::string readFile(const std::filesystem::path& file);

// Points XDG_DATA_HOME and XDG_RUNTIME_DIR below `root`, so that the library is a fresh one.
void usePrivateXdgFolders(const std::filesystem::path& root);

// Whether nothing, not even a dangling link, is at `path`.
bool absent(const std::filesystem::path& path);

// A TrueType collection made of whole sfnt files, with the table offsets moved to where
// the tables land in the collection.
std::string makeCollection(const std::vector<std::filesystem::path>& fonts);

} // namespace VellumineTest
