// `galley fonts` as a user runs it: output forms and exit status.
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

} // namespace
