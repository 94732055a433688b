// Holds a lock of the allocator for the few dozen instructions that are done under one.
//
// Order of the locks, outermost first: the shared cache's, the thread caches' pool, the store of a class, the clusters,
// the ledger.
#pragma once

#include <CoreMutex.h>
#include <CorePlatform/Thread.h>

namespace tvxcore {
namespace utility {
namespace SmallBlocks {

class Guard
{
public:
    explicit Guard(threads::CoreMutex& ioMutex) noexcept : mMutex(ioMutex.try_lock() || Lock(ioMutex) ? &ioMutex : nullptr)
    {
    }

    ~Guard()
    {
        if (mMutex != nullptr) {
            mMutex->unlock();
        }
    }

    Guard(const Guard&) = delete;
    Guard& operator=(const Guard&) = delete;

private:
    // The holder is about to leave, if it runs: a short look is cheaper than a sleep. A holder that the system has
    // stopped for good never leaves, and then nobody else is there to be kept out.
    static bool Lock(threads::CoreMutex& ioMutex) noexcept
    {
        for (int i = 0; i < 100; ++i) {
            __builtin_ia32_pause();
            if (ioMutex.try_lock()) {
                return true;
            }
        }
        if (threads::Platform::ProcessIsEnding_Impl()) {
            return false;
        }
        ioMutex.lock();
        return true;
    }

    threads::CoreMutex* mMutex;
};

} // namespace SmallBlocks
} // namespace utility
} // namespace tvxcore
