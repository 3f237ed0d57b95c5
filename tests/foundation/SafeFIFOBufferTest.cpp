#include "foundation/SafeFIFOBuffer.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

using Tamrik::SafeFIFOBuffer;

TEST(SafeFIFOBufferTest, TryPopNeverBlocksAndKeepsOrder) {
    SafeFIFOBuffer<int> buffer(4);
    int value = -1;
    EXPECT_FALSE(buffer.tryPop(value));
    buffer.push(1);
    buffer.push(2);
    EXPECT_TRUE(buffer.tryPop(value));
    EXPECT_EQ(value, 1);
    EXPECT_TRUE(buffer.tryPop(value));
    EXPECT_EQ(value, 2);
    EXPECT_FALSE(buffer.tryPop(value));
}

TEST(SafeFIFOBufferTest, BoundedBufferBlocksPushWhileFull) {
    SafeFIFOBuffer<int> buffer(1);
    buffer.push(1);
    std::atomic<bool> pushed{false};
    std::thread producer([&] {
        buffer.push(2);
        pushed = true;
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_FALSE(pushed);
    int value = 0;
    EXPECT_TRUE(buffer.tryPop(value));
    producer.join();
    EXPECT_TRUE(pushed);
    EXPECT_TRUE(buffer.tryPop(value));
    EXPECT_EQ(value, 2);
}

TEST(SafeFIFOBufferTest, UnboundedBufferNeverBlocks) {
    SafeFIFOBuffer<int> buffer(Tamrik::Semaphore::getMaxValue());
    EXPECT_FALSE(buffer.isBounded());
    // Far beyond the semaphore's own limit for an initial value.
    for (int i = 0; i < 100000; ++i) {
        buffer.push(i);
    }
    int value = -1;
    int popped = 0;
    while (buffer.tryPop(value)) {
        EXPECT_EQ(value, popped);
        ++popped;
    }
    EXPECT_EQ(popped, 100000);
}

TEST(SafeFIFOBufferTest, ManyProducersAndOneConsumerLoseNothing) {
    SafeFIFOBuffer<int> buffer(8);
    constexpr int producers = 4;
    constexpr int perProducer = 2000;
    std::vector<std::thread> threads;
    for (int p = 0; p < producers; ++p) {
        threads.emplace_back([&buffer, p] {
            for (int i = 0; i < perProducer; ++i) {
                buffer.push(p * perProducer + i);
            }
        });
    }
    std::vector<int> seen(producers * perProducer, 0);
    int received = 0;
    while (received < producers * perProducer) {
        int value;
        if (buffer.tryPop(value)) {
            ++seen[value];
            ++received;
        } else {
            std::this_thread::yield();
        }
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (int count : seen) {
        ASSERT_EQ(count, 1);
    }
}
