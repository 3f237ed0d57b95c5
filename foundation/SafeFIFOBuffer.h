#pragma once

#include "foundation/Mutex.h"
#include "foundation/Semaphore.h"

#include <deque>

namespace Tamrik {

// Thread-safe queue: usedSlots counts queued elements, freeSlots the room left. A
// capacity of Semaphore::getMaxValue() means unbounded: push then never waits.
template <typename T>
class SafeFIFOBuffer {
public:
    explicit SafeFIFOBuffer(unsigned long capacity)
        : capacity(capacity), freeSlots(capacity), usedSlots(0) {}

    // Blocks while a bounded buffer is full.
    void push(const T& value) {
        if (isBounded()) {
            freeSlots.dec();
        }
        {
            ScopedLock lock(mutex);
            queue.push_back(value);
        }
        usedSlots.inc();
    }

    // Never blocks: false at once when the buffer is empty.
    bool tryPop(T& out) {
        if (!usedSlots.trydec()) {
            return false;
        }
        ScopedLock lock(mutex);
        out = queue.front();
        queue.pop_front();
        if (isBounded()) {
            freeSlots.inc();
        }
        return true;
    }

    bool isBounded() const { return capacity != Semaphore::getMaxValue(); }

private:
    unsigned long capacity;
    Semaphore freeSlots;
    Semaphore usedSlots;
    Mutex mutex;
    std::deque<T> queue;
};

} // namespace Tamrik
