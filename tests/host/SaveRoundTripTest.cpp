// Replacement, Save As and reopening, with the original kept safe.
#include "HostTestSupport.h"
#include "host/document/DocumentSaver.h"
#include "host/idml/IdmlError.h"

#include <zip.h>

#include <filesystem>

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

} // namespace
