#include "FontsDialogFixture.h"

#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

namespace UiTest {
namespace {

std::string contentsOf(const std::filesystem::path& path) {
    std::ifstream in(path);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

// Every string key the identifiers and the dialog descriptions use has an English text, so
// no user ever sees a bare key.
TEST(Resources, EveryKeyHasAnEnglishText) {
    const std::filesystem::path folder = RESOURCES_DIR;
    std::set<std::string> texts;
    std::istringstream table(contentsOf(folder / "strings.en"));
    for (std::string line; std::getline(table, line);)
        if (const auto equals = line.find(" = "); line.rfind("0x", 0) == 0 && equals != std::string::npos)
            texts.insert(line.substr(0, equals));

    std::set<std::string> used;
    for (const std::string& name : between(contentsOf(folder / "VellumineIDs.h"), "VLM_KEY(", ")"))
        used.insert("0x11f300k" + name + "Key");
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        if (entry.path().extension() == ".ui")
            for (const std::string& name : between(contentsOf(entry.path()), "<string>0x11f300k", "</string>"))
                used.insert("0x11f300k" + name);
    used.erase("0x11f300knameKey"); // the macro's own parameter
    EXPECT_GT(used.size(), 20u);
    for (const std::string& key : used)
        EXPECT_TRUE(texts.count(key)) << key << " has no text in strings.en";
}

} // namespace
} // namespace UiTest
