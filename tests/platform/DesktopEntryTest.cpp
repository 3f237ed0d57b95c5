#include "platform/linux/DesktopEntry.h"

#include <gtest/gtest.h>

namespace DesktopEntry = Platform::Linux::DesktopEntry;
using Strings = std::vector<std::string>;

namespace {

Strings exec(const std::string& raw, const DesktopEntry::FieldValues& values = {}) {
    Strings argv;
    std::string error;
    EXPECT_TRUE(DesktopEntry::parseExec(raw, values, argv, error)) << raw << ": " << error;
    return argv;
}

std::string execError(const std::string& raw) {
    Strings argv;
    std::string error;
    EXPECT_FALSE(DesktopEntry::parseExec(raw, {}, argv, error)) << raw;
    return error;
}

TEST(DesktopEntryExec, QuotedArgumentsKeepSpacesAndTheirEscapes) {
    EXPECT_EQ(exec(R"("/opt/Font Tools/vellumine"   serve   --quiet)"),
              (Strings{"/opt/Font Tools/vellumine", "serve", "--quiet"}));
    EXPECT_EQ(exec(R"(sh -c "echo \"\$HOME\" \`date\`")"),
              (Strings{"sh", "-c", R"(echo "$HOME" `date`)"}));
    EXPECT_EQ(exec(R"(app "")"), (Strings{"app", ""}));
}

TEST(DesktopEntryExec, StringEscapesApplyBeforeQuoting) {
    // A literal backslash inside quotes takes four in the file: \\\\ -> \\ -> \.
    EXPECT_EQ(exec(R"(app "a\\\\b")"), (Strings{"app", R"(a\b)"}));
    // \s is a space of the value, and so separates arguments.
    EXPECT_EQ(exec(R"(app\sone)"), (Strings{"app", "one"}));
    EXPECT_EQ(DesktopEntry::unescapeString(R"(a\tb\nc\\d\"e)"), "a\tb\nc\\d\\\"e");
}

TEST(DesktopEntryExec, FieldCodesExpandOrDisappear) {
    DesktopEntry::FieldValues values{"vellumine-icon", "Vellumine Launcher", "/x/v.desktop"};
    EXPECT_EQ(exec("vellumine %f %F %u %U %d %D %n %N %v %m --from=%k %i \"%c\" 100%%", values),
              (Strings{"vellumine", "--from=/x/v.desktop", "--icon", "vellumine-icon",
                       "Vellumine Launcher", "100%"}));
    EXPECT_EQ(exec("vellumine --file=%f %i"), (Strings{"vellumine", "--file="}))
        << "without Icon, %i leaves nothing";
}

TEST(DesktopEntryExec, MalformedLinesAreRefusedWithAReason) {
    EXPECT_NE(execError(R"(app "unterminated)").find("unterminated"), std::string::npos);
    EXPECT_NE(execError(R"(app "quoted"glued)").find("closing quote"), std::string::npos);
    EXPECT_NE(execError(R"(app mid"dle)").find("unquoted"), std::string::npos);
    EXPECT_NE(execError(R"(app "\a")").find("escape"), std::string::npos);
    EXPECT_NE(execError("app %x").find("%x"), std::string::npos);
    EXPECT_NE(execError("app 5%").find("lone %"), std::string::npos);
    EXPECT_NE(execError("app --icon=%i").find("%i"), std::string::npos);
    EXPECT_NE(execError("").find("no program"), std::string::npos);
    EXPECT_NE(execError("%f %U").find("no program"), std::string::npos);
}

TEST(DesktopEntryGroup, ReadsOnlyTheUnlocalisedDesktopEntryKeys) {
    const std::string text = "# comment first\n"
                             "[Desktop Entry]\r\n"
                             "Type = Application\n"
                             "Name=Vellumine\n"
                             "Name[de]=Vellumine DE\n"
                             "Exec=vellumine serve \n"
                             "Exec=second wins not\n"
                             "\n"
                             "[Desktop Action Open]\n"
                             "Exec=other\n";
    std::map<std::string, std::string> keys;
    std::string error;
    ASSERT_TRUE(DesktopEntry::parseGroup(text, keys, error)) << error;
    EXPECT_EQ(keys,
              (std::map<std::string, std::string>{
                  {"Type", "Application"}, {"Name", "Vellumine"}, {"Exec", "vellumine serve "}}));
}

TEST(DesktopEntryGroup, TextsThatAreNoDesktopEntryAreRefused) {
    std::map<std::string, std::string> keys;
    std::string error;
    EXPECT_FALSE(DesktopEntry::parseGroup("[Other]\nExec=x\n", keys, error));
    EXPECT_NE(error.find("no [Desktop Entry]"), std::string::npos);
    EXPECT_FALSE(DesktopEntry::parseGroup("Exec=before any group\n[Desktop Entry]\n", keys, error));
    EXPECT_NE(error.find("line 1"), std::string::npos);
    EXPECT_FALSE(DesktopEntry::parseGroup("[Desktop Entry\nExec=x\n", keys, error));
    EXPECT_FALSE(DesktopEntry::parseGroup("[Desktop Entry]\njust words\n", keys, error));
    EXPECT_NE(error.find("line 2"), std::string::npos);
    EXPECT_FALSE(DesktopEntry::parseGroup(std::string("\0\xff\xfe", 3), keys, error));
}

} // namespace
