// `galley fonts` and `galley replace` as a user runs them: output forms and exit status.
#include "HostTestSupport.h"

#include <array>
#include <cstdio>
#include <sys/wait.h>
#include <tuple>

namespace {

struct Result {
    int status = -1;
    std::string output;
};

Result run(const std::string& arguments) {
    Result result;
    FILE* pipe = ::popen((std::string(GALLEY_EXECUTABLE) + " " + arguments + " 2>&1").c_str(), "r");
    std::array<char, 4096> buffer;
    while (std::size_t n = std::fread(buffer.data(), 1, buffer.size(), pipe))
        result.output.append(buffer.data(), n);
    int status = ::pclose(pipe);
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return result;
}

class FontsCommand : public ::testing::Test {
protected:
    HostTest::PrivateFontconfig world;
    HostTest::TempDir dir;
    void SetUp() override { world.link("/usr/share/fonts/type1/urw-base35/NimbusSans-Regular.t1"); }
};

TEST_F(FontsCommand, JsonListsMissingThenInstalledAndExitsOneWhenFontsAreMissing) {
    std::string path = HostTest::writeDescribed(dir, R"(
font "Nimbus Sans" Regular NimbusSans-Regular Type1
font "Quote \"Q\" Sans" Bold QuoteSans-Bold OpenTypeCFF
story
para font="Nimbus Sans" style=Regular
run text="a"
run font="Quote \"Q\" Sans" style=Bold text="b"
)");
    Result result = run("fonts --json " + path);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, "{\"document\": \"" + path +
                                 "\", \"fonts\": ["
                                 "{\"family\": \"Quote \\\"Q\\\" Sans\", \"style\": \"Bold\", "
                                 "\"postscriptName\": \"QuoteSans-Bold\", "
                                 "\"type\": \"OpenType CFF\", \"status\": \"missing\"}, "
                                 "{\"family\": \"Nimbus Sans\", \"style\": \"Regular\", "
                                 "\"postscriptName\": \"NimbusSans-Regular\", "
                                 "\"type\": \"Type 1\", \"status\": \"installed\"}]}\n");
}

// Nothing missing exits 0 with the table; bad input exits 2 naming the file and the part.
TEST_F(FontsCommand, TableExitsZeroAndErrorsExitTwoWithTheFileAndPart) {
    IdmlTestKit::DocumentDef bad;
    bad.replacedParts = {{"Resources/Styles.xml", "<oops"}};
    IdmlTestKit::writeIdml(bad, dir.file("bad.idml"));
    const char* fine = "story\npara font=\"Nimbus Sans\" style=Regular\nrun text=a\n";
    for (auto [arguments, status, shown] :
         {std::tuple<std::string, int, std::string>{
              HostTest::writeDescribed(dir, fine), 0,
              "Nimbus Sans  Regular  NimbusSans-Regular  Type 1  installed"},
          {dir.file("bad.idml"), 2, dir.file("bad.idml") + ": Resources/Styles.xml: malformed XML"},
          {"", 2, ""},
          {dir.file("absent.idml"), 2, dir.file("absent.idml")}}) {
        Result result = run("fonts " + arguments);
        EXPECT_EQ(result.status, status) << arguments;
        EXPECT_NE(result.output.find(shown), std::string::npos) << result.output;
    }
}

// A document exported with a font that was missing where it was made: Fonts.xml gives no
// PostScript name. A style names it too.
constexpr const char* kExported = R"(
font "Nimbus Sans" Black - OpenTypeCFF
font "Nimbus Sans" Regular NimbusSans-Regular Type1
pstyle Title font="Nimbus Sans" style=Black
story
para pstyle=Title
run text="Title"
para font="Nimbus Sans" style=Regular
run style=Black wrap=xml text="tagged"
)";

TEST_F(FontsCommand, ReplaceSetsTheTextInTheNewFaceAndWithStylesLeavesNothingMissing) {
    const std::string path = HostTest::writeDescribed(dir, kExported);
    Result textOnly = run("replace " + path + " \"Nimbus Sans Black\" NimbusSans-Regular");
    EXPECT_EQ(textOnly.status, 1) << textOnly.output; // the Title style still names it
    EXPECT_NE(textOnly.output.find("in 2 runs of text"), std::string::npos) << textOnly.output;
    EXPECT_NE(run("fonts " + path).output.find("Nimbus Sans  Black    -"), std::string::npos);

    const std::string fixed = dir.file("fixed.idml");
    const std::string before = HostTest::readFile(path);
    Result styles = run("replace " + path + " \"nimbus sans black\" \"Nimbus Sans Regular\" " +
                        "--styles --output " + fixed);
    EXPECT_EQ(styles.status, 0) << styles.output;
    EXPECT_NE(styles.output.find("in 1 style (Title)"), std::string::npos) << styles.output;
    EXPECT_EQ(HostTest::readFile(path), before);
    Result report = run("fonts " + fixed);
    EXPECT_EQ(report.status, 0) << report.output;
    EXPECT_EQ(report.output.find("Black"), std::string::npos) << report.output;
}

// Every refusal exits 2, names what is wrong and writes nothing, not even a temporary file.
TEST_F(FontsCommand, ReplaceRefusalsWriteNothing) {
    const std::string path = HostTest::writeDescribed(dir, kExported);
    const std::string before = HostTest::readFile(path);
    const std::string output = " --output " + dir.file("out.idml");
    const std::pair<std::string, std::string> cases[] = {
        {"\"Nimbus Sans Light\" NimbusSans-Regular", "uses no font named \"Nimbus Sans Light\""},
        {"\"Nimbus Sans Black\" \"No Such Face\"", "no installed font is named \"No Such Face\""},
        {"NimbusSans-Regular", "name the document, the font to replace and its replacement"},
        {"NimbusSans-Regular NimbusSans-Regular --frobnicate", "unknown option \"--frobnicate\""},
    };
    for (const auto& [arguments, message] : cases) {
        Result result = run("replace " + path + " " + arguments + output);
        EXPECT_EQ(result.status, 2) << arguments;
        EXPECT_NE(result.output.find(message), std::string::npos) << result.output;
        EXPECT_EQ(HostTest::readFile(path), before) << arguments;
        EXPECT_EQ(dir.entries(), 1) << arguments;
    }
    const std::string onlyStyles = HostTest::writeDescribed(
        dir, "font Gone Regular GoneR Type1\npstyle S font=Gone style=Regular\nstory\n", "s.idml");
    Result result = run("replace " + onlyStyles + " GoneR NimbusSans-Regular");
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.output.find("only styles name it (S): add --styles"), std::string::npos)
        << result.output;
}

} // namespace
