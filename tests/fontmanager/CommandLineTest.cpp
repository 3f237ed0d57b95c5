// The `vellumine` command as a user runs it, in process, on a private XDG data folder.
#include "FontFixtures.h"

#include "fontmanager/Cli.h"
#include "fontmanager/LibraryPaths.h"
#include "fontmanager/RequestDispatcher.h"
#include "fontmanager/SqliteCatalog.h"

#include "platform/linux/notify.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <sstream>

namespace Vellumine {
namespace {

using namespace VellumineTest;

class CommandLineTest : public testing::Test {
protected:
    void SetUp() override {
        usePrivateXdgFolders(scratch.path());
        setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus", 1);
    }

    // Exit status, standard output and standard error of one command.
    struct Run {
        int status;
        std::string out;
        std::string errors;
    };
    Run run(const std::vector<std::string>& arguments) {
        std::ostringstream out, errors;
        const int status = runCli(arguments, out, errors);
        return {status, out.str(), errors.str()};
    }

    void answerFontRequest(const std::string& psName) {
        const auto paths = LibraryPaths::fromEnvironment();
        SqliteCatalog catalog(paths.catalogFile());
        Activation activation(catalog, paths.activationFolder());
        LibraryChanges changes(catalog, [](const std::string&) { return 0; });
        RequestDispatcher(catalog, activation, changes)
            .answer("<cmd>fontRequest</cmd>\n<targetApp>InDn</targetApp>\n<font>\n<psName>" +
                    psName + "</psName>\n</font>\n</cmd>\n");
    }

    PrivateFontconfig noSystemFonts;
    ScratchFolder scratch;
};

TEST_F(CommandLineTest, ListsEveryFaceOnOneLineWhateverItsFileIsCalled) {
    const auto odd = scratch.write("tab\there\nnew line\x1b.ttf", readFile(dejaVuSans));
    ASSERT_EQ(run({"add", odd.string(), nimbusRomanType1.string()}).status, 0);
    const Run listed = run({"list"});
    EXPECT_EQ(listed.status, 0);
    EXPECT_EQ(std::count(listed.out.begin(), listed.out.end(), '\n'), 2);
    EXPECT_NE(listed.out.find("tab\\there\\nnew line\\x1b.ttf\n"), std::string::npos) << listed.out;
}

TEST_F(CommandLineTest, AutomaticActivationsAreListedDeactivatedTogetherAndCanBeTurnedOff) {
    run({"add", dejaVuSans.string(), dejaVuSerif.string(), nimbusRomanType1.string()});
    run({"activate", "NimbusRoman-Regular"});
    answerFontRequest("DejaVuSans");
    answerFontRequest("NimbusRoman-Regular"); // active already, by the user
    const Run status = run({"status"});
    EXPECT_NE(status.out.find("activated automatically:\n  1\tDejaVuSans\tfor InDn\n"),
              std::string::npos)
        << status.out;
    EXPECT_NE(status.out.find("auto-activation: on"), std::string::npos);

    EXPECT_EQ(run({"deactivate", "--auto"}).status, 0);
    EXPECT_EQ(run({"list", "--active"}).out.find("DejaVuSans"), std::string::npos);
    EXPECT_NE(run({"list", "--active"}).out.find("NimbusRoman-Regular"), std::string::npos);

    for (const auto& [arguments, expected] : std::vector<std::pair<std::vector<std::string>, int>>{
             {{"config", "auto-activate", "off"}, 0},
             {{"config", "system-fonts", "off"}, 0},
             {{"config", "auto-activate", "maybe"}, 2},
             {{"config", "colour", "on"}, 2},
             {{"config", "store-url", "file:///etc/passwd?%s"}, 2},
             {{"config", "store-url", "https://fonts.example.com/find?q=%s"}, 0}}) {
        EXPECT_EQ(run(arguments).status, expected) << arguments[1] << " " << arguments[2];
    }
    EXPECT_EQ(run({"config"}).out, "auto-activate off\nauto-deactivate on\nsystem-fonts off\n"
                                   "store-url https://fonts.example.com/find?q=%s\n");
    answerFontRequest("DejaVuSerif");
    EXPECT_EQ(run({"list", "--active"}).out.find("DejaVuSerif"), std::string::npos);
}

TEST_F(CommandLineTest, SetsAreActivatedAndDeactivatedTogether) {
    run({"add", dejaVuSans.string(), dejaVuSerif.string(), nimbusRomanType1.string()});
    struct Step {
        std::vector<std::string> arguments;
        int status;
        std::string out; // expected in standard output
    };
    for (const Step& step : std::vector<Step>{
             {{"set", "create", "Brochure"}, 0, "set Brochure created"},
             {{"set", "add", "Brochure", "DejaVuSans", "3"}, 0, "2 face(s) added"},
             {{"set", "add", "Brochure", "Nowhere"}, 1, ""},
             {{"set", "add", "Missing", "1"}, 1, ""},
             {{"set", "create", "bad\nname"}, 1, ""},
             {{"set"}, 0, "Brochure	2 face(s)"},
             {{"set", "activate", "Brochure"}, 0, "NimbusRoman-Regular activated"},
             {{"list", "--active"}, 0, "DejaVuSans"},
             {{"set", "remove", "Brochure", "DejaVuSans"}, 0, "1 face(s) taken from Brochure"},
             {{"set", "deactivate", "Brochure"}, 0, "NimbusRoman-Regular deactivated"},
             {{"list", "--active"}, 0, "DejaVuSans"}, // no longer in the set: stays active
             {{"set", "delete", "Brochure"}, 0, "its faces stay"},
             {{"set", "show", "Brochure"}, 1, ""},
             {{"set", "frobnicate", "Brochure"}, 2, ""},
         }) {
        const Run result = run(step.arguments);
        EXPECT_EQ(result.status, step.status) << step.arguments[0] << result.errors;
        EXPECT_NE(result.out.find(step.out), std::string::npos) << result.out;
    }
    EXPECT_EQ(run({"list", "--active"}).out.find("Nimbus"), std::string::npos);
}

TEST_F(CommandLineTest, CheckSaysWhetherTheLibraryAndItsLinksAgree) {
    run({"add", dejaVuSans.string()});
    run({"activate", "DejaVuSans"});
    EXPECT_EQ(run({"check"}).status, 0);
    const auto folder = LibraryPaths::fromEnvironment().activationFolder();
    std::filesystem::remove_all(folder);
    EXPECT_EQ(run({"check"}).status, 1);
    const Run repaired = run({"check", "--repair"});
    EXPECT_EQ(repaired.status, 0);
    EXPECT_NE(repaired.out.find("1 problem(s), 1 repaired"), std::string::npos) << repaired.out;
    EXPECT_EQ(run({"check"}).status, 0);
}

// A notification folder others may write is refused: the change is still made, and the
// user hears once that applications will not hear of it.
TEST_F(CommandLineTest, TheLibraryComesFromTheEnvironmentTheOptionOrTheConfigurationFile) {
    const std::string fromOption = "sqlite:" + (scratch.path() / "option.db").string();
    const std::string fromConfig = "sqlite:" + (scratch.path() / "config.db").string();
    scratch.write("config/vellumine/vellumine.conf", "library = " + fromConfig + "\n");
    ASSERT_EQ(run({"--library", fromOption, "add", dejaVuSans.string()}).status, 0);
    EXPECT_NE(run({"--library=" + fromOption, "status"})
                  .out.find("library: " + fromOption + " (--library)\n"),
              std::string::npos);
    // Without the option, the configuration file decides: an empty library.
    const Run configured = run({"status"});
    EXPECT_NE(configured.out.find("library: " + fromConfig + " ("), std::string::npos)
        << configured.out;
    EXPECT_NE(configured.out.find("faces: 0"), std::string::npos) << configured.out;
    setenv("VELLUMINE_LIBRARY", fromOption.c_str(), 1);
    const Run fromEnvironment = run({"--library", fromConfig, "list"});
    unsetenv("VELLUMINE_LIBRARY");
    EXPECT_NE(fromEnvironment.out.find("DejaVuSans"), std::string::npos);

    for (const auto& [arguments, message] :
         std::vector<std::pair<std::vector<std::string>, std::string>>{
             {{"--library"}, "--library needs a library URL"},
             {{"--library", "mysql://db/fonts", "list"}, "is neither sqlite:PATH nor"},
         }) {
        const Run refused = run(arguments);
        EXPECT_NE(refused.status, 0);
        EXPECT_NE(refused.errors.find(message), std::string::npos) << refused.errors;
    }
}

TEST_F(CommandLineTest, RemoveTakesFacesOutOfTheLibraryAndTheirLinksWithThem) {
    run({"add", dejaVuSans.string(), nimbusRomanType1.string()});
    ASSERT_EQ(run({"activate", "DejaVuSans"}).status, 0);
    const auto link = LibraryPaths::fromEnvironment().activationFolder() / "1-DejaVuSans.ttf";
    ASSERT_FALSE(absent(link));
    const Run removed = run({"remove", "DejaVuSans", "2"});
    EXPECT_EQ(removed.status, 0) << removed.errors;
    EXPECT_TRUE(absent(link));
    EXPECT_TRUE(std::filesystem::exists(dejaVuSans)); // the user's file stays
    EXPECT_EQ(run({"list"}).out, "");
    const Run again = run({"remove", "2"});
    EXPECT_EQ(again.status, 1);
    EXPECT_NE(again.errors.find("no face with container id 2"), std::string::npos);
    const Run grant = run({"grant", "ben", "read"});
    EXPECT_EQ(grant.status, 1);
    EXPECT_NE(grant.errors.find("roles belong to a PostgreSQL library"), std::string::npos)
        << grant.errors;
}

TEST_F(CommandLineTest, ARefusedNotificationFolderIsWarnedOfOnce) {
    const auto folder = scratch.path() / "runtime" / "notify";
    std::filesystem::create_directories(folder);
    std::filesystem::permissions(folder, std::filesystem::perms::all);
    const std::string warning = "vellumine: warning: applications will not hear of library "
                                "changes: the notification folder is refused: " +
                                folder.string() + " is writable by others\n";
    for (const auto& command : std::vector<std::vector<std::string>>{{"add", dejaVuSans.string()},
                                                                     {"activate", "DejaVuSans"}}) {
        const Run done = run(command);
        EXPECT_EQ(done.status, 0) << command[0];
        EXPECT_EQ(done.errors, warning) << command[0];
    }

    std::ostringstream warnings;
    SqliteCatalog catalog(LibraryPaths::fromEnvironment().catalogFile());
    LibraryChanges changes(catalog,
                           [](const std::string&) { return NOTIFY_STATUS_INVALID_FOLDER; });
    changes.warnTo(warnings).announce("FSBC");
    changes.announce("FSBC");
    EXPECT_EQ(warnings.str(), warning) << "a serving vellumine warns once, not at every change";
}

} // namespace
} // namespace Vellumine
