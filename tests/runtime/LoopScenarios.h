#pragma once

// The runtime's loop scenarios, run over each event loop: sd-event's in runtime_tests and
// Qt's in gui_tests.

#include "RuntimeFixture.h"

#include "sdk/IIdleTask.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <thread>

namespace RuntimeTest {

using namespace std::chrono_literals;

template <typename Loop>
class LoopScenarios : public RuntimeFixtureOn<Loop> {};
TYPED_TEST_SUITE_P(LoopScenarios);

TYPED_TEST_P(LoopScenarios, IdleTaskRunsAgainAfterTheDelayItAnswers) {
    this->probe->idleDelays = {20, 60, kEndOfTime};
    const auto start = std::chrono::steady_clock::now();
    std::vector<std::chrono::steady_clock::duration> runs;
    this->runtime->invokeAction("probe");
    for (int run = 0; run < 3; ++run) {
        ASSERT_TRUE(this->runUntilEvent("idle " + std::to_string(run)));
        runs.push_back(std::chrono::steady_clock::now() - start);
    }
    EXPECT_GE(runs[1] - runs[0], 20ms);
    EXPECT_GE(runs[2] - runs[1], 60ms);
    EXPECT_EQ(this->runtime->idleTasks().count(), 0u) << "kEndOfTime uninstalls the task";
}

TYPED_TEST_P(LoopScenarios, ModalWaitKeepsIdleTasksRunningAndEndsWhenOneClosesTheDialog) {
    this->probe->idleDelays = {5, 5, 5, 5};
    this->probe->idleRunsBeforeClosingDialog = 2;
    this->runtime->invokeAction("probe");
    this->runtime->invokeAction("modal");
    const std::vector<std::string> tail(this->probe->events.end() - 4, this->probe->events.end());
    EXPECT_EQ(tail,
              (std::vector<std::string>{"idle 1", "idle 2", "detach", "wait returned, closed"}));
    EXPECT_TRUE(this->saw("attach"));
    EXPECT_FALSE(this->runtime->dialogs().timedOut());
}

TYPED_TEST_P(LoopScenarios, AWaitThatHoldsIdleTasksRunsThemOnlyAfterwards) {
    this->runtime->invokeAction("probe");
    bool ended = false, ranDuringWait = false;
    const auto wakeUp = this->loop.addTimer([&] { ended = true; });
    this->loop.armTimer(wakeUp, 50000);
    this->runtime->dialogs().waitUntil(
        [&] {
            ranDuringWait = ranDuringWait || this->saw("idle 0");
            return ended;
        },
        false);
    EXPECT_FALSE(ranDuringWait);
    EXPECT_TRUE(this->saw("idle 0")) << "the task came due during the wait and runs when it ends";
    this->loop.remove(wakeUp);
}

TYPED_TEST_P(LoopScenarios, AWaitPastTheDeadlineCancelsTheDialogInFront) {
    Galley::Runtime::Options options;
    options.deadline = std::chrono::steady_clock::now() + 150ms;
    this->start(options);
    this->SetUp();
    this->runtime->invokeAction("modal");
    EXPECT_TRUE(this->saw("wait returned, closed"));
    EXPECT_TRUE(this->runtime->dialogs().timedOut());
    EXPECT_EQ(this->runtime->dialogs().frontDialog(), nullptr);
}

// Plug-in code that waits (the refresh loop) keeps the windows painted through
// serviceWindows(), which must run no callback: a due timer and a readable descriptor wait
// for the next iteration.
TYPED_TEST_P(LoopScenarios, ServicingTheWindowsRunsNoCallback) {
    int fds[2];
    ASSERT_EQ(::pipe(fds), 0);
    std::vector<std::string> ran;
    const auto timer = this->loop.addTimer([&] { ran.push_back("timer"); });
    const auto pipe = this->loop.watchFd(fds[0], POLLIN, [&] {
        char byte;
        EXPECT_EQ(::read(fds[0], &byte, 1), 1);
        ran.push_back("pipe");
    });
    this->loop.armTimer(timer, 1000);
    ASSERT_EQ(::write(fds[1], "x", 1), 1);
    std::this_thread::sleep_for(10ms);
    for (int turn = 0; turn < 3; ++turn)
        this->loop.serviceWindows();
    EXPECT_TRUE(ran.empty());
    for (int turn = 0; turn < 10 && ran.size() < 2; ++turn)
        this->loop.iterate(20000);
    std::sort(ran.begin(), ran.end());
    EXPECT_EQ(ran, (std::vector<std::string>{"pipe", "timer"}));
    this->loop.remove(pipe);
    this->loop.remove(timer);
    ::close(fds[0]);
    ::close(fds[1]);
}

REGISTER_TYPED_TEST_SUITE_P(LoopScenarios, IdleTaskRunsAgainAfterTheDelayItAnswers,
                            ModalWaitKeepsIdleTasksRunningAndEndsWhenOneClosesTheDialog,
                            AWaitThatHoldsIdleTasksRunsThemOnlyAfterwards,
                            AWaitPastTheDeadlineCancelsTheDialogInFront,
                            ServicingTheWindowsRunsNoCallback);

} // namespace RuntimeTest
