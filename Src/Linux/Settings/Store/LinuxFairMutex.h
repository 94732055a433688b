// Floor: System
// A fair lock, which its waiters acquire in the order of their arrival. A thread in a loop can reacquire a std::mutex
// before any waiter wakes up, so other threads could wait for a store for seconds.
#pragma once

#include <Platform/Mutex.h>

#include <condition_variable>
#include <cstdint>
#include <new>

namespace ORL {
namespace Registry {
namespace Linux {

class TVXCORE_LOCK FairMutex
{
public:
    void lock() TVXCORE_ACQUIRES() { WaitForTurn(); }
    void unlock() TVXCORE_RELEASES() { EndTurn(); }

    /// Resets the lock in a child of fork. The forking thread owned it, and the waiting threads do not exist in the
    /// child.
    void ResetAfterFork() noexcept TVXCORE_RELEASES() { ::new (static_cast<void*>(this)) FairMutex; }

private:
    void WaitForTurn()
    {
        MutexLock guard(mMutex);
        const std::uint64_t turn = mNext++;
        mTurnChanged.wait(guard.Lock(), [&]() TVXCORE_REQUIRES(mMutex) { return mTurn == turn; });
    }

    void EndTurn()
    {
        {
            const MutexLock guard(mMutex);
            ++mTurn;
        }
        mTurnChanged.notify_all();
    }

    Mutex mMutex;
    std::condition_variable mTurnChanged;
    std::uint64_t mNext TVXCORE_GUARDED_BY(mMutex) = 0;
    std::uint64_t mTurn TVXCORE_GUARDED_BY(mMutex) = 0;
};

/// Holds the lock until the end of the scope.
class TVXCORE_SCOPED_LOCK FairMutexLock
{
public:
    explicit FairMutexLock(FairMutex& inMutex) TVXCORE_ACQUIRES(inMutex) : mMutex(inMutex) { inMutex.lock(); }
    ~FairMutexLock() TVXCORE_RELEASES() { mMutex.unlock(); }
    FairMutexLock(const FairMutexLock&) = delete;
    FairMutexLock& operator=(const FairMutexLock&) = delete;

private:
    FairMutex& mMutex;
};

} // namespace Linux
} // namespace Registry
} // namespace ORL
