// Floor: Objects
// A fixed pool of locks for any number of shared objects.
#pragma once

#include <ORLConfig.h>
#include <ORLCriticalSection.h>

namespace ORL {

/// Hands out 64 recursive locks in rotation. An object keeps its lock for life. Many objects share each lock, so two
/// objects may have the same one; no lock order is defined between the locks of two objects.
///
/// Owner:    the library owns the locks.
/// Threads:  thread-safe.
/// Failure:  never throws.
class ORL_API SharedObjectBase
{
public:
    /// Returns the next lock, which lives as long as the library. Thread-safe.
    static CriticalSection& GetCriticalSection();

    /// A reference to an object's lock.
    class TagBase
    {
    public:
        /// inLock must outlive the tag.
        explicit TagBase(CriticalSection& inLock) : mLock(&inLock) {}

        void Lock() const TVXCORE_ACQUIRES(*mLock) { mLock->Lock(); }     ///< locks the object's lock
        void Unlock() const TVXCORE_RELEASES(*mLock) { mLock->Unlock(); } ///< undoes one Lock
        CriticalSection& GetCriticalSection() const { return *mLock; }    ///< returns the object's lock

    private:
        CriticalSection* mLock;
    };
};

} // namespace ORL
