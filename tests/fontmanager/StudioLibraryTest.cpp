// A studio's library as its users meet it: two workstations (two private worlds, each with
// its own data, cache and machine ID) on one PostgreSQL library of a private cluster, the
// `vellumine` command run in process for each in turn.
#include "FontFixtures.h"
#include "PrivatePostgres.h"

#include "fontmanager/Cli.h"
#include "fontmanager/LibraryListener.h"
#include "fontmanager/LibraryPaths.h"
#include "fontmanager/OpenCatalog.h"
#include "fontmanager/PostgresCatalog.h"
#include "fontmanager/RequestDispatcher.h"

#include <gtest/gtest.h>

#include <sstream>
#include <thread>

namespace Vellumine {
namespace {

using namespace VellumineTest;
using namespace std::chrono_literals;

struct CommandRun {
    int status;
    std::string out;
    std::string errors;
};

// One workstation: its own XDG folders and machine ID; the library comes from the
// environment, as a studio's login scripts would set it.
class Workstation {
public:
    Workstation(const std::filesystem::path& root, std::string machine)
        : root(root), machine(std::move(machine)) {}

    CommandRun run(const std::vector<std::string>& arguments, const std::string& library) const {
        use(library);
        std::ostringstream out, errors;
        const int status = runCli(arguments, out, errors);
        return {status, out.str(), errors.str()};
    }
    void use(const std::string& library) const {
        usePrivateXdgFolders(root);
        setenv("VELLUMINE_LIBRARY", library.c_str(), 1);
        setenv("VELLUMINE_MACHINE_ID", machine.c_str(), 1);
    }
    std::filesystem::path activationFolder() const { return root / "data" / "fonts" / "vellumine"; }

    // What a font request from Galley gets here, auto-activation included.
    std::string fontRequest(const std::string& library, const std::string& postScriptName) const {
        use(library);
        const auto catalog = openCatalog(LibraryLocation::parse(library, "test"));
        Activation activation(*catalog, activationFolder());
        LibraryChanges changes(*catalog, [](const std::string&) { return 0; });
        return RequestDispatcher(*catalog, activation, changes)
            .answer("<cmd>fontRequest</cmd>\n<targetApp>InDn</targetApp>\n<font>\n<psName>" +
                    postScriptName + "</psName>\n</font>\n</cmd>\n");
    }

private:
    std::filesystem::path root;
    std::string machine;
};

class StudioLibrary : public testing::Test {
protected:
    void SetUp() override {
        setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus", 1);
        if (!cluster.available()) {
            GTEST_SKIP() << cluster.whyNot();
        }
        library = cluster.createDatabase();
    }
    void TearDown() override {
        unsetenv("VELLUMINE_LIBRARY");
        unsetenv("VELLUMINE_MACHINE_ID");
    }

    // Fonts as a designer has them before adding them: in a folder of their own.
    std::filesystem::path sourceFolder() {
        const auto folder = scratch.path() / "incoming";
        std::filesystem::create_directories(folder);
        for (const auto& file :
             {dejaVuSans, nimbusRomanType1, urwType1Folder / "NimbusRoman-Regular.afm"}) {
            std::filesystem::copy_file(file, folder / file.filename());
        }
        return folder;
    }

    PrivatePostgres& cluster = PrivatePostgres::shared();
    PrivateFontconfig noSystemFonts;
    ScratchFolder scratch;
    std::string library;
    Workstation anne{scratch.path() / "anne", "workstation-anne"};
    Workstation ben{scratch.path() / "ben", "workstation-ben"};
};

TEST_F(StudioLibrary, AFontAddedOnOneWorkstationIsListedAndActivatedOnAnotherWithoutItsFile) {
    const auto source = sourceFolder();
    ASSERT_EQ(anne.run({"add", source.string()}, library).status, 0);
    std::filesystem::remove_all(source); // nothing shared but the database

    const CommandRun listed = ben.run({"list"}, library);
    EXPECT_NE(listed.out.find("DejaVuSans"), std::string::npos) << listed.out;
    EXPECT_NE(listed.out.find("NimbusRoman-Regular"), std::string::npos) << listed.out;

    // Galley on Ben's workstation asks: one face, no choice, activated before the answer.
    const std::string reply = ben.fontRequest(library, "DejaVuSans");
    EXPECT_NE(reply.find("<isActive>true</isActive>"), std::string::npos) << reply;
    const auto link = ben.activationFolder() / "1-DejaVuSans.ttf";
    EXPECT_EQ(readFile(link), readFile(dejaVuSans));
    EXPECT_EQ(ben.run({"activate", "NimbusRoman-Regular"}, library).status, 0);
    EXPECT_FALSE(absent(ben.activationFolder() / "2-NimbusRoman-Regular.afm"));

    ASSERT_EQ(anne.run({"activate", "DejaVuSans"}, library).status, 0);
    const CommandRun status = anne.run({"status"}, library);
    EXPECT_NE(status.out.find("library: " + library + " (VELLUMINE_LIBRARY)"), std::string::npos)
        << status.out;
    EXPECT_NE(status.out.find("1\tDejaVuSans\t2 workstation(s)"), std::string::npos) << status.out;
    EXPECT_NE(status.out.find("faces: 2 (1 active)"), std::string::npos) << status.out;

    // Removed on one workstation: gone from the library, and its bytes with it.
    EXPECT_EQ(anne.run({"remove", "DejaVuSans"}, library).status, 0);
    EXPECT_TRUE(absent(anne.activationFolder() / "1-DejaVuSans.ttf"));
    EXPECT_EQ(ben.run({"list"}, library).out.find("DejaVuSans"), std::string::npos);
}

TEST_F(StudioLibrary, AReadOnlyRoleListsAndActivatesButAddingNamesTheMissingRight) {
    ASSERT_EQ(anne.run({"add", dejaVuSans.string()}, library).status, 0);
    const std::string role = "reader_" + databaseOf(library);
    cluster.execute(databaseOf(library), "CREATE ROLE " + role + " LOGIN");
    // A hardened server: nothing for PUBLIC, so the role has only what grant gives it.
    cluster.execute(databaseOf(library), "REVOKE CONNECT ON DATABASE " + databaseOf(library) +
                                             " FROM PUBLIC; REVOKE USAGE ON SCHEMA public FROM "
                                             "PUBLIC");
    ASSERT_EQ(anne.run({"grant", role, "read"}, library).status, 0);
    const std::string asReader = cluster.url(databaseOf(library), role);

    EXPECT_NE(ben.run({"list"}, asReader).out.find("DejaVuSans"), std::string::npos);
    EXPECT_EQ(ben.run({"activate", "DejaVuSans"}, asReader).status, 0);
    EXPECT_EQ(ben.run({"deactivate", "DejaVuSans"}, asReader).status, 0);
    for (const auto& [arguments, right] :
         std::vector<std::pair<std::vector<std::string>, std::string>>{
             {{"add", dejaVuSerif.string()}, "INSERT"}, {{"remove", "DejaVuSans"}, "DELETE"}}) {
        const CommandRun refused = ben.run(arguments, asReader);
        EXPECT_EQ(refused.status, 1) << arguments[0];
        EXPECT_NE(refused.errors.find("role " + role + " lacks the " + right + " right"),
                  std::string::npos)
            << refused.errors;
    }
    EXPECT_NE(ben.run({"list"}, asReader).out.find("DejaVuSans"), std::string::npos);

    ASSERT_EQ(anne.run({"grant", role, "write"}, library).status, 0);
    EXPECT_EQ(ben.run({"add", dejaVuSerif.string()}, asReader).status, 0);
    EXPECT_EQ(anne.run({"grant", role, "read"}, library).status, 0);
    EXPECT_EQ(ben.run({"remove", "DejaVuSerif"}, asReader).status, 1);
}

TEST_F(StudioLibrary, ANotificationTellsTheOtherWorkstationOfAChangeWithinASecond) {
    ben.use(library);
    LibraryListener listener(LibraryLocation::parse(library, "test"), "workstation-ben");
    ASSERT_GE(listener.socket(), 0);
    EXPECT_EQ(anne.run({"add", dejaVuSans.string()}, library).status, 0);
    const auto heard = [&](std::chrono::milliseconds within) {
        const auto deadline = LibraryListener::Clock::now() + within;
        while (LibraryListener::Clock::now() < deadline) {
            if (listener.takeChange(LibraryListener::Clock::now())) {
                return true;
            }
            std::this_thread::sleep_for(10ms);
        }
        return false;
    };
    EXPECT_TRUE(heard(1000ms));
    // The faces' transaction and the journal's each notify: the second may come later.
    while (heard(200ms)) {
    }
    EXPECT_EQ(ben.run({"activate", "DejaVuSans"}, library).status, 0);
    EXPECT_FALSE(heard(300ms)); // activating is Ben's own business
    EXPECT_EQ(ben.run({"remove", "DejaVuSans"}, library).status, 0);
    EXPECT_FALSE(heard(300ms)); // announced to Ben's applications already, not through the database
}

TEST_F(StudioLibrary, CommandsNameTheUnreachableLibraryAndEverythingRecoversWhenItReturns) {
    PrivatePostgres own; // stopped below: the run's shared cluster serves other tests
    ASSERT_TRUE(own.available()) << own.whyNot();
    const std::string library = own.createDatabase();
    ASSERT_EQ(anne.run({"add", dejaVuSans.string()}, library).status, 0);
    anne.use(library);
    const auto catalog = openCatalog(LibraryLocation::parse(library, "test"));
    LibraryListener listener(LibraryLocation::parse(library, "test"), "workstation-anne");

    own.stop();
    const CommandRun down = anne.run({"list"}, library);
    EXPECT_EQ(down.status, 1);
    EXPECT_NE(down.errors.find("library " + library + " is unreachable"), std::string::npos)
        << down.errors;
    EXPECT_THROW(catalog->faceCount(), PostgresUnreachable);
    // The server's loop polls the socket, which turns readable when the server goes.
    for (int poll = 0; poll < 100 && listener.socket() >= 0; ++poll) {
        EXPECT_FALSE(listener.takeChange(LibraryListener::Clock::now()));
        std::this_thread::sleep_for(10ms);
    }
    EXPECT_EQ(listener.socket(), -1);

    own.start();
    EXPECT_EQ(catalog->faceCount(), 1);
    EXPECT_TRUE(listener.takeChange(LibraryListener::Clock::now() + 10s)); // may have missed some
    EXPECT_GE(listener.socket(), 0);
    EXPECT_EQ(anne.run({"activate", "DejaVuSans"}, library).status, 0);
}

} // namespace
} // namespace Vellumine
