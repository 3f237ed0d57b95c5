#pragma once

#include <cstdint>
#include <utility>

// GCC 12 follows release() into the destructor of the last handle and cannot see that
// the count guards every later access, so it warns of a use after free that cannot happen.
#if defined(__GNUC__) && !defined(__clang__) && __GNUC__ >= 12
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wuse-after-free"
#endif

namespace Tamrik {

template <typename T>
class SmartPointer;

// Base of every object shared through SmartPointer. The count is intrusive and
// deliberately non-atomic: a counted object crosses threads only under an outside lock.
class SmartPointable {
public:
    SmartPointable() = default;
    // A copy is a new object: it starts with no handles of its own.
    SmartPointable(const SmartPointable&) : refCount(0) {}
    SmartPointable& operator=(const SmartPointable&) { return *this; }
    virtual ~SmartPointable() = default;

    std::int32_t getRefCount() const { return refCount; }

private:
    template <typename T>
    friend class SmartPointer;
    std::int32_t refCount = 0;
};

// Counting handle. Copying adds a reference; the last handle to go deletes the object
// through its virtual destructor. An object whose count never rose is never deleted here.
template <typename T>
class SmartPointer {
public:
    SmartPointer() = default;
    SmartPointer(T* object) : pointer(object) { acquire(); } // NOLINT: implicit by design
    SmartPointer(const SmartPointer& other) : pointer(other.pointer) { acquire(); }
    // Moving hands the reference over: the count does not change.
    SmartPointer(SmartPointer&& other) noexcept : pointer(std::exchange(other.pointer, nullptr)) {}
    template <typename U>
    SmartPointer(const SmartPointer<U>& other) : pointer(other.get()) { // NOLINT
        acquire();
    }
    ~SmartPointer() { release(); }

    SmartPointer& operator=(const SmartPointer& other) { return assign(other.pointer); }
    SmartPointer& operator=(T* object) { return assign(object); }
    SmartPointer& operator=(SmartPointer&& other) noexcept {
        if (this != &other) {
            release();
            pointer = std::exchange(other.pointer, nullptr);
        }
        return *this;
    }

    T* operator->() const { return pointer; }
    T& operator*() const { return *pointer; }
    T* get() const { return pointer; }
    bool isNull() const { return pointer == nullptr; }
    explicit operator bool() const { return pointer != nullptr; }

    friend bool operator==(const SmartPointer& a, const SmartPointer& b) {
        return a.pointer == b.pointer;
    }

private:
    SmartPointer& assign(T* object) {
        if (object == pointer) {
            return *this;
        }
        release();
        pointer = object;
        acquire();
        return *this;
    }

    void acquire() {
        if (pointer != nullptr) {
            ++counted()->refCount;
        }
    }

    void release() noexcept {
        if (pointer != nullptr) {
            SmartPointable* object = counted();
            if (--object->refCount == 0) {
                delete object;
            }
        }
        pointer = nullptr;
    }

    SmartPointable* counted() const { return static_cast<SmartPointable*>(pointer); }

    T* pointer = nullptr;
};

} // namespace Tamrik

#if defined(__GNUC__) && !defined(__clang__) && __GNUC__ >= 12
#pragma GCC diagnostic pop
#endif
