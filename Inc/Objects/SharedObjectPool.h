// The locks of SharedObjectBase.
#pragma once

#include <ORLAtomic.h>
#include <ORLCriticalSection.h>

namespace ORL {

/// A fixed pool of locks, used in rotation. A static pool of constant-initialised locks may be used during static
/// construction.
class SharedObjectPool
{
public:
    static constexpr std::uint32_t kSize = 64;

    /// Returns the next entry; the first call returns entry 1.
    CriticalSection& Next()
    {
        const auto turn = static_cast<std::uint32_t>(AtomicIncrement(mTurns));
        return mLocks[turn & (kSize - 1)];
    }

    CriticalSection& Entry(std::uint32_t inIndex) { return mLocks[inIndex]; }

private:
    CriticalSection mLocks[kSize];
    std::int32_t mTurns = 0;
};

/// Returns the pool of SharedObjectBase.
SharedObjectPool& TheSharedObjectPool();

} // namespace ORL
