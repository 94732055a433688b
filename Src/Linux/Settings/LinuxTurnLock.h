// Floor: System
// A lock that its waiters get in the order in which they came. A plain mutex lets a thread that works in a loop take it
// again and again, and a store is locked for tens of microseconds at a time: others would wait for seconds.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <new>

namespace ORL {
namespace Registry {
namespace Linux {

class TurnLock
{
public:
    void lock()
    {
        std::unique_lock<std::mutex> guard(mMutex);
        const std::uint64_t turn = mNext++;
        mTurnHasCome.wait(guard, [&] { return mTurn == turn; });
    }

    void unlock()
    {
        {
            const std::lock_guard<std::mutex> guard(mMutex);
            ++mTurn;
        }
        mTurnHasCome.notify_all();
    }

    /// In a child of fork, whose parent's forking thread owned the lock: the threads that waited for it are not here.
    void Renew() noexcept { ::new (static_cast<void*>(this)) TurnLock; }

private:
    std::mutex mMutex;
    std::condition_variable mTurnHasCome;
    std::uint64_t mNext = 0;
    std::uint64_t mTurn = 0;
};

} // namespace Linux
} // namespace Registry
} // namespace ORL
