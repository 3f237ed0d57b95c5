#include "foundation/Semaphore.h"

#include "foundation/Exception.h"
#include "foundation/SystemError.h"

#include <algorithm>
#include <cerrno>
#include <sys/ipc.h>
#include <sys/sem.h>

namespace Tamrik {

namespace {

// The caller must define this union for semctl's fourth argument.
union SemctlArgument {
    int val;
    semid_ds* buf;
    unsigned short* array;
};

int systemVOperation(int id, short delta, short flags) {
    sembuf operation{0, delta, flags};
    return semop(id, &operation, 1);
}

} // namespace

Semaphore::Semaphore(unsigned long initialValue, Kind kind) {
    if (kind == Kind::Automatic) {
        const unsigned long clamped = std::min(initialValue, getMaxValue());
        isPosix = sem_init(&posixSemaphore, 0, static_cast<unsigned int>(clamped)) == 0;
        if (isPosix) {
            return;
        }
    }
    systemVId = semget(IPC_PRIVATE, 1, 0700 | IPC_CREAT);
    if (systemVId == -1) {
        throw Exception("Semaphore (SysV): failed to create systemV semaphore: " +
                            describeSystemError(errno),
                        "semaphore", 101, "");
    }
    SemctlArgument argument;
    argument.val = static_cast<int>(initialValue);
    if (semctl(systemVId, 0, SETVAL, argument) == -1) {
        const int error = errno;
        semctl(systemVId, 0, IPC_RMID);
        throw Exception("Semaphore (SysV): failed to initialize systemV semaphore: " +
                            describeSystemError(error),
                        "semaphore", 108, "");
    }
}

Semaphore::~Semaphore() {
    if (isPosix) {
        int current = 0;
        do {
            sem_post(&posixSemaphore);
            sem_getvalue(&posixSemaphore, &current);
        } while (current < 1);
        sem_destroy(&posixSemaphore);
    } else {
        semctl(systemVId, 0, IPC_RMID);
    }
}

void Semaphore::dec() {
    if (isPosix) {
        while (sem_wait(&posixSemaphore) != 0) {
            const int error = errno;
            if (error == EINTR) {
                continue;
            }
            if (error == EINVAL) {
                throw Exception("Semaphore (Posix): waiting on invalid semaphore", "semaphore", 160,
                                "");
            }
            if (error == EDEADLK) {
                throw Exception("Semaphore (Posix): deadlock detected", "semaphore", 161, "");
            }
            throw Exception("Semaphore (Posix): unexpected error: " + describeSystemError(error),
                            "semaphore", 163, "");
        }
        return;
    }
    while (systemVOperation(systemVId, -1, 0) != 0) {
        const int error = errno;
        if (error != EINTR) {
            throw Exception("Semaphore (SysV): unexpected error: " + describeSystemError(error),
                            "semaphore", 178, "");
        }
    }
}

void Semaphore::inc() {
    if (isPosix) {
        if (sem_post(&posixSemaphore) != 0) {
            throw Exception("Semaphore (Posix): failed to increment systemV semaphore: " +
                                describeSystemError(errno),
                            "semaphore", 197, "");
        }
        return;
    }
    if (systemVOperation(systemVId, 1, 0) != 0) {
        throw Exception("Semaphore (SysV): failed to increment systemV semaphore: " +
                            describeSystemError(errno),
                        "semaphore", 208, "");
    }
}

bool Semaphore::trydec() {
    if (isPosix) {
        while (sem_trywait(&posixSemaphore) != 0) {
            const int error = errno;
            if (error == EINTR) {
                continue;
            }
            if (error == EAGAIN) {
                return false;
            }
            if (error == EINVAL) {
                throw Exception("Semaphore (Posix): waiting on invalid semaphore", "semaphore", 230,
                                "");
            }
            if (error == EDEADLK) {
                throw Exception("Semaphore (Posix): deadlock detected", "semaphore", 231, "");
            }
            throw Exception("Semaphore (Posix): unexpected error: " + describeSystemError(error),
                            "semaphore", 233, "");
        }
        return true;
    }
    while (systemVOperation(systemVId, -1, IPC_NOWAIT) != 0) {
        const int error = errno;
        if (error == EINTR) {
            continue;
        }
        if (error == EAGAIN) {
            return false;
        }
        throw Exception("Semaphore (SysV): unexpected error: " + describeSystemError(error),
                        "semaphore", 250, "");
    }
    return true;
}

int Semaphore::value() const {
    if (isPosix) {
        int current = 0;
        sem_getvalue(const_cast<sem_t*>(&posixSemaphore), &current);
        return current;
    }
    return semctl(systemVId, 0, GETVAL);
}

} // namespace Tamrik
