#include "platform/linux/DesktopEntry.h"

#include <gmock/gmock.h>

namespace DesktopEntry = Platform::Linux::DesktopEntry;
using Strings = std::vector<std::string>;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

// The arguments of an Exec line, or {"refused", why} when it is malformed.
Strings exec(const std::string& raw, const DesktopEntry::FieldValues& values = {}) {
    Strings argv;
    std::string error;
    return DesktopEntry::parseExec(raw, values, argv, error) ? argv : Strings{"refused", error};
}

TEST(DesktopEntryExec, QuotedArgumentsKeepSpacesAndTheirEscapes) {
    EXPECT_THAT(exec(R"("/opt/Font Tools/vellumine"   serve   --quiet)"),
                ElementsAre("/opt/Font Tools/vellumine", "serve", "--quiet"));
    EXPECT_THAT(exec(R"(sh -c "echo \"\$HOME\" \`date\`")"),
                ElementsAre("sh", "-c", R"(echo "$HOME" `date`)"));
    EXPECT_THAT(exec(R"(app "")"), ElementsAre("app", ""));
    // String escapes apply first: a literal backslash inside quotes takes four in the
    // file (\\\\ -> \\ -> \), and \s is a space of the value, so it separates arguments.
    EXPECT_THAT(exec(R"(app "a\\\\b")"), ElementsAre("app", R"(a\b)"));
    EXPECT_THAT(exec(R"(app\sone)"), ElementsAre("app", "one"));
    EXPECT_EQ(DesktopEntry::unescapeString(R"(a\tb\nc\\d\"e)"), "a\tb\nc\\d\\\"e");
}

TEST(DesktopEntryExec, FieldCodesExpandOrDisappear) {
    DesktopEntry::FieldValues values{"vellumine-icon", "Vellumine Launcher", "/x/v.desktop"};
    EXPECT_THAT(exec("vellumine %f %F %u %U %d %D %n %N %v %m --from=%k %i \"%c\" 100%%", values),
                ElementsAre("vellumine", "--from=/x/v.desktop", "--icon", "vellumine-icon",
                            "Vellumine Launcher", "100%"));
    EXPECT_THAT(exec("vellumine --file=%f %i"), ElementsAre("vellumine", "--file="))
        << "without Icon, %i leaves nothing";
}

TEST(DesktopEntryExec, MalformedLinesAreRefusedWithAReason) {
    for (auto [line, why] : {std::pair{R"(app "unterminated)", "unterminated"},
                             {R"(app "quoted"glued)", "closing quote"},
                             {R"(app mid"dle)", "unquoted"},
                             {R"(app "\a")", "escape"},
                             {"app %x", "%x"},
                             {"app 5%", "lone %"},
                             {"app --icon=%i", "%i"},
                             {"", "no program"},
                             {"%f %U", "no program"}})
        EXPECT_THAT(exec(line), ElementsAre("refused", HasSubstr(why))) << line;
}

TEST(DesktopEntryGroup, ReadsOnlyTheUnlocalisedKeysOfADesktopEntry) {
    const std::string text = "# comment first\n[Desktop Entry]\r\nType = Application\n"
                             "Name=Vellumine\nName[de]=Vellumine DE\n"
                             "Exec=vellumine serve \nExec=second wins not\n\n"
                             "[Desktop Action Open]\nExec=other\n";
    std::map<std::string, std::string> keys;
    std::string error;
    ASSERT_TRUE(DesktopEntry::parseGroup(text, keys, error)) << error;
    EXPECT_EQ(keys,
              (std::map<std::string, std::string>{
                  {"Type", "Application"}, {"Name", "Vellumine"}, {"Exec", "vellumine serve "}}));

    for (auto [bad, why] :
         {std::pair<std::string, std::string>{"[Other]\nExec=x\n", "no [Desktop Entry]"},
          {"Exec=before any group\n[Desktop Entry]\n", "line 1"},
          {"[Desktop Entry]\njust words\n", "line 2"},
          {std::string("\0\xff\xfe", 3), ""}}) {
        EXPECT_FALSE(DesktopEntry::parseGroup(bad, keys, error)) << bad;
        EXPECT_NE(error.find(why), std::string::npos) << error;
    }
}

} // namespace
