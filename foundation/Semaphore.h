#pragma once

#include <semaphore.h>

namespace Tamrik {

// A counting semaphore: a process-private POSIX unnamed semaphore, or a private System V
// semaphore where POSIX ones cannot be had. The POSIX path clamps the initial value to
// getMaxValue(); the System V path does not.
class Semaphore {
public:
    enum class Kind { Automatic, SystemV };

    explicit Semaphore(unsigned long initialValue, Kind kind = Kind::Automatic);
    // Releases every waiter before the semaphore goes away.
    ~Semaphore();
    Semaphore(const Semaphore&) = delete;
    Semaphore& operator=(const Semaphore&) = delete;

    void inc();
    void dec();
    // Non-blocking dec: false when the value was zero.
    bool trydec();
    // Current value, for tests and diagnostics.
    int value() const;
    bool usesPosix() const { return isPosix; }

    static unsigned long getMaxValue() { return 32767; }

private:
    sem_t posixSemaphore;
    int systemVId = -1;
    bool isPosix = false;
};

} // namespace Tamrik
