// Floor: Platform
// std::mutex and its scoped lock, with the annotations by which clang checks what a lock guards.
#pragma once

#include <mutex>
#include <tvxcore/ThreadSafety.h>

namespace ORL {

class TVXCORE_LOCK Mutex : public std::mutex
{
public:
    void lock() TVXCORE_ACQUIRES() { std::mutex::lock(); }
    void unlock() TVXCORE_RELEASES() { std::mutex::unlock(); }
};

/// Holds the mutex until the end of the scope, except while a condition variable waits on Lock().
class TVXCORE_SCOPED_LOCK MutexLock
{
public:
    explicit MutexLock(Mutex& inMutex) TVXCORE_ACQUIRES(inMutex) : mLock(inMutex) {}
    ~MutexLock() TVXCORE_RELEASES() = default;
    MutexLock(const MutexLock&) = delete;
    MutexLock& operator=(const MutexLock&) = delete;

    std::unique_lock<std::mutex>& Lock() { return mLock; }

private:
    std::unique_lock<std::mutex> mLock;
};

} // namespace ORL
