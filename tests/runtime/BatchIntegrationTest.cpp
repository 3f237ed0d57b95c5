// galley --batch as a user runs it, with the test plug-in, on a private session bus.
#include "PrivateSession.h"

#include "platform/linux/DBusAppEvents.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>

#include <fstream>
#include <sstream>

extern char** environ;

namespace {

struct GalleyRun {
    pid_t pid = -1;
    std::string out, err;
    int status = -1;

    std::string read(const std::string& path) const {
        std::ifstream in(path);
        std::stringstream text;
        text << in.rdbuf();
        return text.str();
    }
    std::string output() const { return read(out); }
    std::string errors() const { return read(err); }

    // Waits for the exit status (bounded; the run is killed past it).
    int wait(std::chrono::seconds limit = std::chrono::seconds(30)) {
        VlmTest::waitFor([&] {
            int raw = 0;
            if (waitpid(pid, &raw, WNOHANG) != pid)
                return false;
            status = WIFEXITED(raw) ? WEXITSTATUS(raw) : 128 + WTERMSIG(raw);
            return true;
        }, limit);
        if (status < 0) {
            kill(pid, SIGKILL);
            waitpid(pid, nullptr, 0);
        }
        return status;
    }
};

class Batch : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(session.ok()) << session.error();
        setenv("GALLEY_PLUGIN_PATH", TEST_PLUGIN_DIR, 1);
    }
    void TearDown() override { unsetenv("GALLEY_PLUGIN_PATH"); }

    GalleyRun start(std::vector<std::string> arguments) {
        GalleyRun run;
        run.out = session.root() + "/out" + std::to_string(runs) + ".txt";
        run.err = session.root() + "/err" + std::to_string(runs++) + ".txt";
        arguments.insert(arguments.begin(), {GALLEY_EXECUTABLE, "--batch", SAMPLE_DOCUMENT});
        std::vector<char*> argv;
        for (auto& argument : arguments)
            argv.push_back(argument.data());
        argv.push_back(nullptr);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, run.out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, run.err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        posix_spawn(&run.pid, GALLEY_EXECUTABLE, &actions, nullptr, argv.data(), environ);
        posix_spawn_file_actions_destroy(&actions);
        return run;
    }

    VlmTest::PrivateSession session;
    int runs = 0;
};

TEST_F(Batch, AnAppEventClosesTheModalDialogFromTheMainLoop) {
    GalleyRun run = start({"--timeout", "20", "menu", "modal"});
    ASSERT_TRUE(VlmTest::waitFor([&] { return run.output().find("== Test dialog ==") != std::string::npos; }))
        << run.errors();
    int status = 0;
    auto peer = Platform::Linux::DBusAppEvents::openAddress(session.busAddress(), "", status);
    ASSERT_NE(peer, nullptr);
    std::string reply;
    EXPECT_EQ(peer->send("org.galley.Galley", {"TEST", "CLOS", ""}, reply), 0);
    EXPECT_EQ(reply, "closed");
    const int exit = run.wait();
    EXPECT_TRUE(exit == 0 || exit == 1) << run.errors();
    EXPECT_NE(run.output().find("== Test dialog (closed) =="), std::string::npos) << run.output();
    EXPECT_EQ(run.errors().find("time-out"), std::string::npos) << run.errors();
}

TEST_F(Batch, ActionsThatNameNothingFailWithWhatExists) {
    struct Case {
        std::vector<std::string> actions;
        std::string listed;
    };
    const std::vector<Case> cases = {
        {{"menu", "modal", "press", "Nope"}, "no button \"Nope\"; the buttons are: probeButton (\"Probe\"), okButton (\"OK\")"},
        {{"menu", "nothing"}, "no menu action \"nothing\"; the actions are: probe (\"Probe\"), modal (\"Modal dialog\")"},
        {{"menu", "modal", "select", "Missing-Font"}, "no row shows \"Missing-Font\"; the rows are: (none)"},
        {{"menu", "modal", "pick", "Missing"}, "no entry \"Missing\" among the 0 entries"},
    };
    for (const auto& c : cases) {
        GalleyRun run = start(c.actions);
        EXPECT_EQ(run.wait(), 2) << run.errors();
        EXPECT_NE(run.errors().find(c.listed), std::string::npos) << run.errors();
    }
}

TEST_F(Batch, BadArgumentsExitTwoWithTheReason) {
    GalleyRun badTimeout = start({"--timeout", "soon"});
    EXPECT_EQ(badTimeout.wait(), 2);
    EXPECT_NE(badTimeout.errors().find("--timeout takes whole seconds"), std::string::npos) << badTimeout.errors();
}

} // namespace
