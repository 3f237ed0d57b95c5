// Replacement, Save As and reopening, with the original kept safe.
#include "HostTestSupport.h"
#include "host/document/DocumentSaver.h"
#include "host/idml/IdmlError.h"

#include <zip.h>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <optional>

namespace {

struct Part {
    std::string name, data;
    bool stored;
    friend bool operator==(const Part&, const Part&) = default;
};

// The package's parts in container order, read with libzip rather than Galley's reader.
std::vector<Part> readParts(const std::string& path) {
    zip_t* archive = zip_open(path.c_str(), ZIP_RDONLY, nullptr);
    if (!archive)
        throw std::runtime_error("cannot open " + path);
    std::vector<Part> parts;
    for (zip_int64_t i = 0; i < zip_get_num_entries(archive, 0); ++i) {
        zip_stat_t stat;
        zip_stat_index(archive, i, 0, &stat);
        Part& part = parts.emplace_back(stat.name, std::string(stat.size, '\0'),
                                        stat.comp_method == ZIP_CM_STORE);
        zip_file_t* file = zip_fopen_index(archive, i, 0);
        zip_fread(file, part.data.data(), part.data.size());
        zip_fclose(file);
    }
    zip_discard(archive);
    return parts;
}

class SaveRoundTrip : public HostTest::SessionTest<HostTest::FontconfigWorld> {
protected:
    std::string original, saved = dir.file("saved.idml");

    void SetUp() override {
        faces.link("/usr/share/fonts/type1/urw-base35/NimbusRoman-Regular.t1");
        faces.link("/usr/share/fonts/truetype/dejavu/DejaVuSerif.ttf");
        original = HostTest::writeDescribed(dir, R"(
font "Lost Serif" Regular LostSerif-Regular Type1
composite Mixed "Nimbus Roman" Regular "DejaVu Serif" Book
pstyle Body font="Nimbus Roman" style=Regular
story
para pstyle=Body
run text="stays in Nimbus Roman"
run font=Mixed text=" and a composite the saved catalog must keep"
story
para pstyle=Body
run font="Lost Serif" style=Regular text="replace me\n"
run cstyle= text="and leave me"
)");
    }
    std::unique_ptr<Galley::IdmlDocument> openReplaced() {
        auto doc = Galley::IdmlDocument::open(original, fonts());
        EXPECT_EQ(doc->usage().missing().size(), 1u);
        EXPECT_EQ(HostTest::replaceFontThroughSdk(doc.get(), "LostSerif-Regular", "DejaVuSerif"),
                  1);
        return doc;
    }
};

// The rewritten Fonts.xml keeps the composite font: without it, the reopened document
// would miss a font named "Mixed".
TEST_F(SaveRoundTrip, ReplacedFontSurvivesSaveAndReopenAndOnlyChangedPartsDiffer) {
    auto doc = openReplaced();
    Galley::saveDocumentAs(*doc, saved);
    EXPECT_FALSE(doc->IsModified());

    auto reopened = Galley::IdmlDocument::open(saved, fonts());
    EXPECT_TRUE(reopened->usage().missing().empty());
    EXPECT_EQ(HostTest::usageNames(reopened->usage().used()),
              (std::vector<std::string>{"Nimbus Roman/Regular", "DejaVu Serif/Book"}));

    auto before = readParts(original), after = readParts(saved);
    ASSERT_EQ(before.size(), after.size());
    EXPECT_EQ(after[0].name, "mimetype");
    EXPECT_TRUE(after[0].stored);
    for (std::size_t i = 0; i < before.size(); ++i) {
        const std::string& name = before[i].name;
        EXPECT_EQ(after[i].name, name);
        bool changed = name == "Stories/Story_u2.xml" || name == "Resources/Fonts.xml";
        EXPECT_EQ(after[i] == before[i], !changed) << name;
        if (name != "Resources/Fonts.xml")
            continue;
        EXPECT_NE(after[i].data.find("PostScriptName=\"DejaVuSerif\""), std::string::npos);
        EXPECT_NE(after[i].data.find("FontType=\"TrueType\""), std::string::npos);
        EXPECT_EQ(after[i].data.find("LostSerif"), std::string::npos);
    }
}

TEST_F(SaveRoundTrip, UnmodifiedDocumentSavesEveryPartUnchanged) {
    Galley::saveDocumentAs(*Galley::IdmlDocument::open(original, fonts()), saved);
    EXPECT_EQ(readParts(saved), readParts(original));
}

// A failing save keeps the original and leaves no litter; the original is replaced only
// when asked for, and then whole.
TEST_F(SaveRoundTrip, FailingSaveLeavesTheOriginalAndOverwritingNeedsToBeAsked) {
    const std::string bytes = HostTest::readFile(original);
    auto doc = openReplaced();
    std::filesystem::create_directory(dir.file("occupied"));
    for (const std::string& target :
         {dir.file("occupied"), dir.file("no/such/folder/x.idml"), original})
        EXPECT_THROW(Galley::saveDocumentAs(*doc, target), Galley::IdmlError) << target;

    EXPECT_EQ(HostTest::readFile(original), bytes);
    EXPECT_TRUE(doc->IsModified());
    EXPECT_EQ(dir.entries(), 2); // the original and "occupied"
    Galley::saveDocumentAs(*doc, original, {.overwriteOriginal = true});
    EXPECT_TRUE(Galley::IdmlDocument::open(original, fonts())->usage().missing().empty());
}

mode_t modeOf(const std::string& path) {
    struct stat info {};
    return stat(path.c_str(), &info) == 0 ? info.st_mode & 07777 : 0;
}

// A new file gets 0666 less the umask and an existing one keeps its mode, as an editor's
// save gives them; the temporary's private mode never shows.
TEST_F(SaveRoundTrip, ASavedFileKeepsTheModeOfTheFileItReplacesOrGetsWhatTheUmaskGives) {
    auto doc = Galley::IdmlDocument::open(original, fonts());
    const struct {
        mode_t umask;
        std::optional<mode_t> existing;
        mode_t expected;
    } cases[] = {{022, std::nullopt, 0644}, {077, std::nullopt, 0600}, {002, std::nullopt, 0664},
                 {022, 0644, 0644},         {022, 0600, 0600},         {077, 0664, 0664}};
    int n = 0;
    for (const auto& c : cases) {
        const std::string target = dir.file("mode" + std::to_string(n++) + ".idml");
        if (c.existing) {
            std::ofstream(target) << "an older document";
            chmod(target.c_str(), *c.existing);
        }
        const mode_t before = umask(c.umask);
        Galley::saveDocumentAs(*doc, target);
        umask(before);
        EXPECT_EQ(modeOf(target), c.expected) << std::oct << c.umask << " " << c.existing.value_or(0);
    }
    // Its owner and group too, where this user may set them.
    const std::string given = dir.file("given.idml");
    std::ofstream(given) << "someone else's";
    if (chown(given.c_str(), 4321, 4321) != 0)
        GTEST_SKIP() << "giving a file away needs privileges";
    Galley::saveDocumentAs(*doc, given);
    struct stat info {};
    ASSERT_EQ(stat(given.c_str(), &info), 0);
    EXPECT_EQ(info.st_uid, 4321u);
    EXPECT_EQ(info.st_gid, 4321u);
}

// Saving onto a symbolic link writes the file it points to, in that file's folder, and the
// link stays a link.
TEST_F(SaveRoundTrip, SavingOntoASymbolicLinkReplacesTheFileItPointsTo) {
    std::filesystem::create_directories(dir.file("real"));
    const std::string real = dir.file("real/doc.idml");
    std::ofstream(real) << "an older document";
    chmod(real.c_str(), 0640);
    ASSERT_EQ(symlink("real/doc.idml", dir.file("via.idml").c_str()), 0);
    ASSERT_EQ(symlink("via.idml", dir.file("link.idml").c_str()), 0);
    Galley::saveDocumentAs(*Galley::IdmlDocument::open(original, fonts()), dir.file("link.idml"));
    EXPECT_EQ(std::filesystem::read_symlink(dir.file("link.idml")), "via.idml");
    EXPECT_EQ(readParts(real), readParts(original));
    EXPECT_EQ(modeOf(real), 0640u);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.file("real")),
                            std::filesystem::directory_iterator()),
              1);
}

// A save killed half-way leaves its hidden temporary; the next save of the same file takes
// it away, but not one that a running save holds, nor files that only look alike.
TEST_F(SaveRoundTrip, TheNextSaveRemovesTheTemporariesAKilledSaveLeft) {
    std::filesystem::create_directories(dir.file("saves"));
    const auto in = [&](const std::string& name) { return dir.file("saves/" + name); };
    const std::vector<std::string> stale = {".doc.idml.saving-Ab3xY9", ".doc.idml.saving-Ab3xY9.q1W2e3"};
    // The first is held by a running save; the others only look alike.
    const std::vector<std::string> kept = {".doc.idml.saving-Run123", ".doc.idml.saving-Ab3xY",
                                           ".doc.idml.saving-Ab3xY9~", ".other.idml.saving-Ab3xY9",
                                           "doc.idml.saving-Ab3xY9"};
    for (const auto& name : stale)
        std::ofstream(in(name)) << std::string(1 << 20, 'z');
    for (const auto& name : kept)
        std::ofstream(in(name)) << "keep";
    const int running = ::open(in(kept[0]).c_str(), O_RDONLY);
    ASSERT_EQ(flock(running, LOCK_EX), 0);

    Galley::saveDocumentAs(*Galley::IdmlDocument::open(original, fonts()), in("doc.idml"));
    close(running);
    for (const auto& name : stale)
        EXPECT_FALSE(std::filesystem::exists(in(name))) << name;
    for (const auto& name : kept)
        EXPECT_TRUE(std::filesystem::exists(in(name))) << name;
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.file("saves")),
                            std::filesystem::directory_iterator()),
              static_cast<long>(kept.size()) + 1)
        << "the saved document, and no temporary of its own";
}

} // namespace
