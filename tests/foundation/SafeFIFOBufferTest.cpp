#include "foundation/SafeFIFOBuffer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

using Tamrik::SafeFIFOBuffer;

TEST(SafeFIFOBufferTest, BoundedBufferBlocksPushWhileFullAndTryPopNeverBlocks) {
    SafeFIFOBuffer<int> buffer(1);
    int value = 0;
    EXPECT_FALSE(buffer.tryPop(value));
    buffer.push(1);
    std::atomic<bool> pushed{false};
    std::thread producer([&] {
        buffer.push(2);
        pushed = true;
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_FALSE(pushed);
    EXPECT_TRUE(buffer.tryPop(value));
    EXPECT_EQ(value, 1);
    producer.join();
    EXPECT_TRUE(buffer.tryPop(value));
    EXPECT_EQ(value, 2);
    EXPECT_FALSE(buffer.tryPop(value));
}

TEST(SafeFIFOBufferTest, UnboundedBufferNeverBlocksAndKeepsOrder) {
    SafeFIFOBuffer<int> buffer(Tamrik::Semaphore::getMaxValue());
    EXPECT_FALSE(buffer.isBounded());
    for (int i = 0; i < 100000; ++i) { // far beyond a semaphore's initial-value limit
        buffer.push(i);
    }
    int value = -1;
    int popped = 0;
    while (buffer.tryPop(value)) {
        ASSERT_EQ(value, popped++);
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
    for (int received = 0; received < producers * perProducer;) {
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
    EXPECT_EQ(std::count(seen.begin(), seen.end(), 1), producers * perProducer);
}
