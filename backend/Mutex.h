// A mutex whose use clang checks at compile time (-Wthread-safety). Other compilers ignore the annotations.
#pragma once

#include <mutex>

#if defined(__clang__)
#define KEST_ANNOTATION(x) __attribute__((x))
#else
#define KEST_ANNOTATION(x)
#endif

#define KEST_CAPABILITY(name) KEST_ANNOTATION(capability(name))
#define KEST_SCOPED_CAPABILITY KEST_ANNOTATION(scoped_lockable)
#define KEST_GUARDED_BY(mutex) KEST_ANNOTATION(guarded_by(mutex))
#define KEST_REQUIRES(mutex) KEST_ANNOTATION(requires_capability(mutex))
#define KEST_ACQUIRE(...) KEST_ANNOTATION(acquire_capability(__VA_ARGS__))
#define KEST_RELEASE(...) KEST_ANNOTATION(release_capability(__VA_ARGS__))

namespace Kest {

class KEST_CAPABILITY("mutex") Mutex {
public:
    void lock() KEST_ACQUIRE() { mutex.lock(); }
    void unlock() KEST_RELEASE() { mutex.unlock(); }

private:
    std::mutex mutex;
};

/// Locks a mutex while this object exists.
class KEST_SCOPED_CAPABILITY MutexLock {
public:
    explicit MutexLock(Mutex& toHold) KEST_ACQUIRE(toHold) : mutex(toHold) { mutex.lock(); }
    ~MutexLock() KEST_RELEASE() { mutex.unlock(); }
    MutexLock(const MutexLock&) = delete;
    MutexLock& operator=(const MutexLock&) = delete;

private:
    Mutex& mutex;
};

} // namespace Kest
