// Floor: Objects
// The locks behind SharedObjectBase.
#pragma once

#include <ORLAtomic.h>
#include <ORLCriticalSection.h>

namespace ORL {

/// A fixed pool of locks and the counter that it is used in rotation by. One of static life may be used while statics
/// are still being built where locks are constant-initialised.
class SharedObjectPool
{
public:
    static constexpr std::uint32_t kSize = 64;

    /// The next entry; the first call gives entry 1.
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

/// The pool that SharedObjectBase hands out.
SharedObjectPool& TheSharedObjectPool();

} // namespace ORL
