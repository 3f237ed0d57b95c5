#include "foundation/Thread.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <thread>

using Tamrik::Thread;

namespace {

class ReturningThread : public Thread {
public:
    explicit ReturningThread(int value) : value(value) {}
    ~ReturningThread() override { destroy(); }
    std::atomic<bool> ran{false};

protected:
    int run() override {
        ran = true;
        return value;
    }

private:
    int value;
};

// Runs until released; used to see a thread while it is still running.
class WaitingThread : public Thread {
public:
    ~WaitingThread() override { destroy(); }
    std::atomic<bool> release{false};
    std::atomic<bool> started{false};

protected:
    int run() override {
        started = true;
        while (!release) {
            Thread::sleep(1);
        }
        return 7;
    }
};

void waitUntil(const std::atomic<bool>& flag) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!flag && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

void ignoreSignal(int) {}

} // namespace

TEST(ThreadTest, StartRunsAndJoinReportsTheResult) {
    ReturningThread thread(42);
    ASSERT_TRUE(thread.start(false, -1));
    EXPECT_TRUE(thread.isCreated());
    EXPECT_TRUE(thread.join());
    EXPECT_TRUE(thread.ran);
    EXPECT_EQ(thread.getResult(), 42);
    EXPECT_FALSE(thread.isCreated());
    EXPECT_FALSE(thread.isRunning());
    EXPECT_FALSE(thread.join()); // nothing left to join
}

TEST(ThreadTest, StartRefusesWhileRunningAndRestartsWhenFinished) {
    WaitingThread thread;
    ASSERT_TRUE(thread.start(false, -1));
    waitUntil(thread.started);
    EXPECT_FALSE(thread.start(false, -1));
    thread.release = true;
    EXPECT_TRUE(thread.join());

    ReturningThread again(1);
    ASSERT_TRUE(again.start(false, -1));
    while (again.isRunning()) {
        Thread::sleep(1);
    }
    EXPECT_TRUE(again.start(false, -1)); // the finished thread is reaped and started anew
    EXPECT_TRUE(again.join());
}

TEST(ThreadTest, DestroyCancelsARunningThreadAndRefusesANeverStartedOne) {
    WaitingThread never;
    EXPECT_FALSE(never.destroy());

    WaitingThread running;
    ASSERT_TRUE(running.start(false, -1));
    waitUntil(running.started);
    EXPECT_TRUE(running.destroy()); // cancelled inside its sleep
    EXPECT_FALSE(running.isCreated());
    EXPECT_FALSE(running.isRunning());
    EXPECT_NE(running.getResult(), 7);
}

TEST(ThreadTest, DetachedThreadsCannotBeJoined) {
    ReturningThread thread(3);
    ASSERT_TRUE(thread.start(true, -1));
    EXPECT_TRUE(thread.isDetached());
    EXPECT_FALSE(thread.join());
    waitUntil(thread.ran);
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
