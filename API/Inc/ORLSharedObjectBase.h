// Floor: Objects
// Locks for any number of shared objects, out of a fixed pool.
#pragma once

#include <ORLConfig.h>
#include <ORLCriticalSection.h>

namespace ORL {

/// Hands out 64 locks in rotation. An object keeps the lock it was given for life, and many objects share each: holding
/// two of them at once may be holding one twice, which their being recursive allows, and has no order.
class ORL_API SharedObjectBase
{
public:
    /// The next lock. It lives as long as the library. Safe from any thread.
    static CriticalSection& GetCriticalSection();

    /// What an object remembers of its lock.
    class TagBase
    {
    public:
        /// inLock must outlive the tag.
        explicit TagBase(CriticalSection& inLock) : mLock(&inLock) {}

        void Lock() const { mLock->Lock(); }
        void Unlock() const { mLock->Unlock(); }
        CriticalSection& GetCriticalSection() const { return *mLock; }

    private:
        CriticalSection* mLock;
    };
};

} // namespace ORL
