// galley --batch as a user runs it, with the test plug-in, on a private session bus.
#include "PrivateSession.h"

#include "platform/linux/DBusAppEvents.h"

#include <gtest/gtest.h>

#include "tests/support/GalleyProcess.h"

namespace {

class Batch : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(session.ok()) << session.error();
        setenv("GALLEY_PLUGIN_PATH", TEST_PLUGIN_DIR, 1);
    }
    void TearDown() override { unsetenv("GALLEY_PLUGIN_PATH"); }

    std::unique_ptr<VLMTest::ProgramRun> start(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {GALLEY_EXECUTABLE, "--batch", SAMPLE_DOCUMENT});
        return std::make_unique<VLMTest::ProgramRun>(arguments, session.root() + "/run" + std::to_string(runs++));
    }

    VlmTest::PrivateSession session;
    int runs = 0;
};

TEST_F(Batch, AnAppEventClosesTheModalDialogFromTheMainLoop) {
    auto run = start({"--timeout", "20", "menu", "modal"});
    ASSERT_TRUE(run->waitForOutput("== Test dialog ==")) << run->errors();
    int status = 0;
    auto peer = Platform::Linux::DBusAppEvents::openAddress(session.busAddress(), "", status);
    ASSERT_NE(peer, nullptr);
    std::string reply;
    EXPECT_EQ(peer->send("org.galley.Galley", {"TEST", "CLOS", ""}, reply), 0);
    EXPECT_EQ(reply, "closed");
    const int exit = run->wait();
    EXPECT_TRUE(exit == 0 || exit == 1) << run->errors();
    EXPECT_NE(run->output().find("== Test dialog (closed) =="), std::string::npos) << run->output();
    EXPECT_EQ(run->errors().find("time-out"), std::string::npos) << run->errors();
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
        auto run = start(c.actions);
        EXPECT_EQ(run->wait(), 2) << run->errors();
        EXPECT_NE(run->errors().find(c.listed), std::string::npos) << run->errors();
    }
}

TEST_F(Batch, BadArgumentsExitTwoWithTheReason) {
    auto badTimeout = start({"--timeout", "soon"});
    EXPECT_EQ(badTimeout->wait(), 2);
    EXPECT_NE(badTimeout->errors().find("--timeout takes whole seconds"), std::string::npos) << badTimeout->errors();
}

} // namespace
