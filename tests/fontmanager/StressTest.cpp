// Several vellumine processes change one library at once, for a bounded time; afterwards
// the catalog and the activation folder must agree. The library starts empty, so the first
// commands also race to create the catalog.
#include "FontFixtures.h"

#include "fontmanager/Activation.h"
#include "fontmanager/LibraryPaths.h"
#include "fontmanager/SqliteCatalog.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <fcntl.h>
#include <random>
#include <set>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Vellumine {
namespace {

using namespace VellumineTest;
using Clock = std::chrono::steady_clock;

constexpr int concurrentProcesses = 4;
constexpr auto phaseTime = std::chrono::seconds(3);

struct Outcome {
    std::vector<std::string> arguments;
    int status = -1; // exit status, or -1 when killed
    std::string errors;
};

class LibraryStress : public testing::Test {
protected:
    void SetUp() override {
        usePrivateXdgFolders(scratch.path());
        // Faces 1 and 2 share one collection file and so one link.
        fonts = {scratch.write("Pair.ttc", makeCollection({dejaVuSans, dejaVuSerif})).string(),
                 dejaVuSans.string(), nimbusRomanType1.string(), nimbusRomanOpenType.string()};
    }

    std::vector<std::string> addAll() const {
        std::vector<std::string> add = {"add"};
        add.insert(add.end(), fonts.begin(), fonts.end());
        return add;
    }

    std::vector<std::string> randomCommand() {
        const std::string id = std::to_string(std::uniform_int_distribution<>(1, 5)(random));
        // clang-format off
        switch (std::uniform_int_distribution<>(0, 9)(random)) {
        case 0: return addAll();
        case 1: return {"list"};
        case 2: return {"deactivate", "--auto"};
        case 3: case 4: case 5: return {"deactivate", id};
        default: return {"activate", id};
        }
        // clang-format on
    }

    std::filesystem::path errorsFile(int slot) const {
        return scratch.path() / ("errors-" + std::to_string(slot));
    }

    pid_t start(const std::vector<std::string>& arguments, int slot) {
        const std::string errorsPath = errorsFile(slot).string();
        const pid_t pid = fork();
        if (pid == 0) {
            const int devNull = open("/dev/null", O_WRONLY);
            const int errors = open(errorsPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
            dup2(devNull, STDOUT_FILENO);
            dup2(errors, STDERR_FILENO);
            std::vector<char*> argv = {const_cast<char*>(VELLUMINE_EXECUTABLE)};
            for (const auto& argument : arguments) {
                argv.push_back(const_cast<char*>(argument.c_str()));
            }
            argv.push_back(nullptr);
            execv(argv[0], argv.data());
            _exit(127);
        }
        return pid;
    }

    // Keeps `concurrentProcesses` commands running until `time` has passed (the first round
    // adds the fonts); with `killSome`, every third command is killed soon after its start.
    std::vector<Outcome> runCommands(Clock::duration time, bool killSome) {
        std::vector<Outcome> outcomes;
        std::vector<std::pair<pid_t, Outcome>> slots(concurrentProcesses);
        const auto end = Clock::now() + time;
        for (int started = 0;;) {
            for (int slot = 0; slot < concurrentProcesses && Clock::now() < end; ++slot) {
                auto& [pid, outcome] = slots[slot];
                if (pid != 0) {
                    continue;
                }
                outcome = Outcome();
                outcome.arguments = started++ < concurrentProcesses ? addAll() : randomCommand();
                pid = start(outcome.arguments, slot);
                if (killSome && started % 3 == 0) {
                    usleep(std::uniform_int_distribution<useconds_t>(0, 20000)(random));
                    kill(pid, SIGKILL);
                }
            }
            int status = 0;
            const pid_t finished = waitpid(-1, &status, 0);
            if (finished < 0) {
                return outcomes; // time is up and every command has ended
            }
            for (int slot = 0; slot < concurrentProcesses; ++slot) {
                auto& [pid, outcome] = slots[slot];
                if (pid == finished) {
                    outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
                    outcome.errors = readFile(errorsFile(slot));
                    outcomes.push_back(std::move(outcome));
                    pid = 0;
                }
            }
        }
    }

    // Every face recorded active has its link; every link in the folder is recorded.
    void expectCatalogAndFolderAgree() {
        const auto paths = LibraryPaths::fromEnvironment();
        SqliteCatalog catalog(paths.catalogFile());
        std::set<std::filesystem::path> recorded;
        for (const auto& link : catalog.allLinks()) {
            EXPECT_TRUE(Activation::isIntact(link)) << "face " << link.faceId << ": " << link.link;
            recorded.insert(link.link);
            recorded.insert(link.metricsLink);
        }
        std::error_code error;
        for (const auto& entry :
             std::filesystem::directory_iterator(paths.activationFolder(), error)) {
            EXPECT_EQ(recorded.count(entry.path()), 1u) << "unrecorded " << entry.path();
        }
        EXPECT_EQ(catalog.faceCount(), 5);
    }

    std::string check(const std::vector<std::string>& arguments = {"check"}) {
        const pid_t pid = start(arguments, 99);
        int status = 0;
        waitpid(pid, &status, 0);
        return std::to_string(WEXITSTATUS(status)) + " " + readFile(errorsFile(99));
    }

    ScratchFolder scratch;
    std::vector<std::string> fonts;
    std::mt19937 random{20261123};
};

TEST_F(LibraryStress, ConcurrentCommandsKeepCatalogAndLinksInAgreement) {
    const auto outcomes = runCommands(phaseTime, false);
    for (const auto& outcome : outcomes) {
        const bool sawBusy = outcome.errors.find("busy") != std::string::npos;
        // Failing is allowed only for a catalog that stayed busy, and said so.
        EXPECT_TRUE(outcome.status == 0 || sawBusy)
            << outcome.arguments[0] << " " << outcome.arguments.back() << ": status "
            << outcome.status << ", " << outcome.errors;
    }
    EXPECT_GT(outcomes.size(), static_cast<std::size_t>(concurrentProcesses));
    EXPECT_EQ(check(), "0 ");
    expectCatalogAndFolderAgree();
}

// Commands killed at any point leave at most links nothing records and records whose link
// is gone; `check --repair` (which the server also runs on start) restores agreement.
TEST_F(LibraryStress, CommandsKilledHalfwayLeaveNothingThatCheckCannotRepair) {
    const auto outcomes = runCommands(phaseTime, true);
    EXPECT_GT(outcomes.size(), static_cast<std::size_t>(concurrentProcesses));
    EXPECT_EQ(check({"check", "--repair"}), "0 ");
    EXPECT_EQ(check(), "0 ");
    expectCatalogAndFolderAgree();
}

} // namespace
} // namespace Vellumine
