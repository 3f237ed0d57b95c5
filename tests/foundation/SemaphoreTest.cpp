#include "foundation/Semaphore.h"
#include "foundation/Exception.h"

#include <gtest/gtest.h>
#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <new>
#include <thread>

using Tamrik::Semaphore;

namespace {

constexpr Semaphore::Kind bothKinds[] = {Semaphore::Kind::Automatic, Semaphore::Kind::SystemV};

// Destroys a semaphore while another thread waits on it and returns the waiter's error
// text, "" when it came back normally. The storage outlives the semaphore because the
// released waiter may still touch it.
std::string destroyUnderWaiter(Semaphore::Kind kind) {
    alignas(Semaphore) unsigned char storage[sizeof(Semaphore)];
    auto* semaphore = new (storage) Semaphore(0, kind);
    std::atomic<bool> waiting{false};
    std::string error = "still waiting";
    std::thread waiter([&] {
        waiting = true;
        try {
            semaphore->dec();
            error = "";
        } catch (const Tamrik::Exception& raised) {
            error = raised.getUserMessage() + "@" + std::to_string(raised.getLine());
        }
    });
    while (!waiting) {
        std::this_thread::yield();
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    semaphore->~Semaphore();
    waiter.join();
    return error;
}

} // namespace

TEST(SemaphoreTest, PosixPathClampsTheInitialValueSystemVDoesNot) {
    Semaphore posix(40000);
    EXPECT_TRUE(posix.usesPosix());
    EXPECT_EQ(posix.value(), 32767);

    Semaphore systemV(32767, Semaphore::Kind::SystemV);
    EXPECT_FALSE(systemV.usesPosix());
    EXPECT_EQ(systemV.value(), 32767);
    // The System V path hands the value to the system unclamped; Linux caps a semaphore's
    // value at 32767 (SEMVMX) and refuses anything larger.
    EXPECT_THAT([] { Semaphore(40000, Semaphore::Kind::SystemV); },
                testing::ThrowsMessage<Tamrik::Exception>(testing::HasSubstr(
                    "at line 108\n    User Message : Semaphore (SysV): failed to initialize "
                    "systemV semaphore: ")));
}

TEST(SemaphoreTest, CountsAndBlocksOnBothPaths) {
    for (const Semaphore::Kind kind : bothKinds) {
        Semaphore semaphore(1, kind);
        EXPECT_TRUE(semaphore.trydec());
        EXPECT_FALSE(semaphore.trydec());
        std::atomic<bool> passed{false};
        std::thread waiter([&] {
            semaphore.dec();
            passed = true;
        });
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        EXPECT_FALSE(passed);
        semaphore.inc();
        semaphore.inc();
        waiter.join();
        EXPECT_TRUE(passed);
        EXPECT_EQ(semaphore.value(), 1);
    }
}

TEST(SemaphoreTest, DestructionReleasesAWaiter) {
    EXPECT_EQ(destroyUnderWaiter(Semaphore::Kind::Automatic), "");
    // Removing a System V set makes the waiter's operation fail outright.
    const std::string systemV = destroyUnderWaiter(Semaphore::Kind::SystemV);
    EXPECT_EQ(systemV.rfind("Semaphore (SysV): unexpected error: ", 0), 0u) << systemV;
    EXPECT_EQ(systemV.substr(systemV.size() - 4), "@178");
}
