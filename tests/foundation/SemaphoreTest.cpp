#include "foundation/Semaphore.h"
#include "foundation/Exception.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <new>
#include <thread>

using Tamrik::Semaphore;

TEST(SemaphoreTest, PosixPathClampsTheInitialValueSystemVDoesNot) {
    Semaphore posix(40000);
    EXPECT_TRUE(posix.usesPosix());
    EXPECT_EQ(posix.value(), 32767);

    Semaphore systemV(32767, Semaphore::Kind::SystemV);
    EXPECT_FALSE(systemV.usesPosix());
    EXPECT_EQ(systemV.value(), 32767);

    // The System V path hands the value to the system unclamped; Linux caps a semaphore's
    // value at 32767 (SEMVMX) and refuses anything larger.
    try {
        Semaphore tooLarge(40000, Semaphore::Kind::SystemV);
        ADD_FAILURE() << "40000 was accepted, value " << tooLarge.value();
    } catch (const Tamrik::Exception& error) {
        EXPECT_EQ(error.getLine(), 108u);
        EXPECT_EQ(error.getUserMessage().rfind(
                      "Semaphore (SysV): failed to initialize systemV semaphore: ", 0),
                  0u);
    }
}

TEST(SemaphoreTest, CountsOnBothPaths) {
    for (const Semaphore::Kind kind : {Semaphore::Kind::Automatic, Semaphore::Kind::SystemV}) {
        Semaphore semaphore(1, kind);
        EXPECT_TRUE(semaphore.trydec());
        EXPECT_FALSE(semaphore.trydec());
        semaphore.inc();
        semaphore.inc();
        semaphore.dec();
        EXPECT_EQ(semaphore.value(), 1);
        EXPECT_TRUE(semaphore.trydec());
        EXPECT_FALSE(semaphore.trydec());
    }
}

TEST(SemaphoreTest, DecBlocksUntilIncOnBothPaths) {
    for (const Semaphore::Kind kind : {Semaphore::Kind::Automatic, Semaphore::Kind::SystemV}) {
        Semaphore semaphore(0, kind);
        std::atomic<bool> passed{false};
        std::thread waiter([&] {
            semaphore.dec();
            passed = true;
        });
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        EXPECT_FALSE(passed);
        semaphore.inc();
        waiter.join();
        EXPECT_TRUE(passed);
    }
}

TEST(SemaphoreTest, DestructionReleasesAWaiter) {
    // The storage outlives the semaphore so that the released waiter may still touch it.
    alignas(Semaphore) unsigned char storage[sizeof(Semaphore)];
    auto* semaphore = new (storage) Semaphore(0);
    std::atomic<bool> waiting{false};
    std::atomic<bool> released{false};
    std::thread waiter([&] {
        waiting = true;
        semaphore->dec();
        released = true;
    });
    while (!waiting) {
        std::this_thread::yield();
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    semaphore->~Semaphore();
    waiter.join();
    EXPECT_TRUE(released);
}

TEST(SemaphoreTest, SystemVWaiterOfARemovedSemaphoreGetsTheUnexpectedError) {
    alignas(Semaphore) unsigned char storage[sizeof(Semaphore)];
    auto* semaphore = new (storage) Semaphore(0, Semaphore::Kind::SystemV);
    std::string message;
    unsigned long line = 0;
    std::atomic<bool> waiting{false};
    std::thread waiter([&] {
        waiting = true;
        try {
            semaphore->dec();
        } catch (const Tamrik::Exception& error) {
            message = error.getUserMessage();
            line = error.getLine();
        }
    });
    while (!waiting) {
        std::this_thread::yield();
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    semaphore->~Semaphore();
    waiter.join();
    EXPECT_EQ(message.rfind("Semaphore (SysV): unexpected error: ", 0), 0u) << message;
    EXPECT_EQ(line, 178u);
}
