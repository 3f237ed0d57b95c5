#include "foundation/Thread.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <thread>

using Tamrik::Thread;

namespace {

// Returns its value at once, or, when told to hold, only after release.
class Worker : public Thread {
public:
    explicit Worker(int value, bool hold = false) : held(hold), value(value) {}
    ~Worker() override { destroy(); }
    std::atomic<bool> started{false};
    std::atomic<bool> held;

    void waitUntilStarted() const {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (!started && std::chrono::steady_clock::now() < deadline) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }

protected:
    int run() override {
        started = true;
        while (held) {
            Thread::sleep(1); // a cancellation point
        }
        return value;
    }

private:
    int value;
};

void ignoreSignal(int) {}

} // namespace

TEST(ThreadTest, StartJoinAndRestartReportResults) {
    Worker worker(42, true);
    ASSERT_TRUE(worker.start(false, -1));
    worker.waitUntilStarted();
    EXPECT_FALSE(worker.start(false, -1)); // refused while running
    worker.held = false;
    EXPECT_TRUE(worker.join());
    EXPECT_EQ(worker.getResult(), 42);
    EXPECT_FALSE(worker.isCreated());
    EXPECT_FALSE(worker.join()); // nothing left to join

    ASSERT_TRUE(worker.start(false, -1));
    while (worker.isRunning()) {
        Thread::sleep(1);
    }
    EXPECT_TRUE(worker.start(false, -1)); // the finished thread is reaped and started anew
    EXPECT_TRUE(worker.join());
}

TEST(ThreadTest, DestroyCancelsRunningThreadsAndRefusesUnstartedOnesJoinRefusesDetachedOnes) {
    Worker never(1);
    EXPECT_FALSE(never.destroy());

    Worker running(7, true);
    ASSERT_TRUE(running.start(false, -1));
    running.waitUntilStarted();
    EXPECT_TRUE(running.destroy()); // cancelled inside its sleep
    EXPECT_FALSE(running.isCreated());
    EXPECT_FALSE(running.isRunning());
    EXPECT_NE(running.getResult(), 7);

    Worker detached(3);
    ASSERT_TRUE(detached.start(true, -1));
    EXPECT_FALSE(detached.join());
    detached.waitUntilStarted();
}

TEST(ThreadTest, SleepLastsItsWholeTimeThroughSignals) {
    struct sigaction action {};
    action.sa_handler = ignoreSignal; // no SA_RESTART: nanosleep is interrupted
    sigemptyset(&action.sa_mask);
    struct sigaction previous {};
    sigaction(SIGUSR1, &action, &previous);

    const pthread_t sleeper = pthread_self();
    std::atomic<bool> done{false};
    std::thread interrupter([&] {
        while (!done) {
            pthread_kill(sleeper, SIGUSR1);
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
    });
    const auto start = std::chrono::steady_clock::now();
    const int status = Thread::sleep(300);
    const auto elapsed = std::chrono::steady_clock::now() - start;
    done = true;
    interrupter.join();
    sigaction(SIGUSR1, &previous, nullptr);

    EXPECT_EQ(status, 0);
    EXPECT_GE(elapsed, std::chrono::milliseconds(300));
}
