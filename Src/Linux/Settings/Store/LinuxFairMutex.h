// Floor: System
// A fair lock, which its waiters acquire in the order of their arrival. A thread in a loop can reacquire a std::mutex
// before any waiter wakes up, and other threads would then wait for seconds for a store.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <new>

namespace ORL {
namespace Registry {
namespace Linux {

class FairMutex
{
public:
    void lock()
    {
        std::unique_lock<std::mutex> guard(mMutex);
        const std::uint64_t turn = mNext++;
        mTurnChanged.wait(guard, [&] { return mTurn == turn; });
    }

    void unlock()
    {
        {
            const std::lock_guard<std::mutex> guard(mMutex);
            ++mTurn;
        }
        mTurnChanged.notify_all();
    }

    /// Resets the lock in a child of fork. The forking thread owned it, and the waiting threads do not exist in the
    /// child.
    void ResetAfterFork() noexcept { ::new (static_cast<void*>(this)) FairMutex; }

private:
    std::mutex mMutex;
    std::condition_variable mTurnChanged;
    std::uint64_t mNext = 0;
    std::uint64_t mTurn = 0;
};

} // namespace Linux
} // namespace Registry
} // namespace ORL
