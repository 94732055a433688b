// Floor: Core
// The library's mutex, and its two scoped guards.
//
//   ORL::CriticalSectionLock lock(mLock);        // held until the end of the scope
//   ORL::CriticalSectionTryLock attempt(mLock);  // held until the end of the scope if attempt.IsLocked()
#pragma once

#include <ORLPlatformLock.h>
#include <tvxcore/ThreadSafety.h>

namespace ORL {

/// A recursive mutex: its owner may lock it again, and must call Unlock once for each Lock. No ordering or fairness
/// between waiters is guaranteed. Writes made by one owner are visible to the next. Waiters sleep.
///
/// The operations are const, so that code with const access can lock.
/// Owner:    the creator. Destroying a locked section is undefined behaviour.
/// Threads:  thread-safe. Unlock on a thread that does not own the section is undefined behaviour.
/// Failure:  no operation throws or returns an error.
class TVXCORE_LOCK CriticalSection
{
public:
    // User-provided, so that a const object can be default-initialised.
    ORL_LOCK_CONSTEXPR CriticalSection() noexcept(noexcept(Internal::PlatformLock())) {}
    CriticalSection(const CriticalSection&) = delete;
    CriticalSection& operator=(const CriticalSection&) = delete;

    void Lock() const TVXCORE_ACQUIRES() { mLock.Lock(); }     ///< waits for the lock
    void Unlock() const TVXCORE_RELEASES() { mLock.Unlock(); } ///< undoes one Lock

    /// Locks the section if it can do so without waiting. Returns whether the section was locked; if so, the caller
    /// must call Unlock.
    bool TryLock() const TVXCORE_TRIES_TO_ACQUIRE(true) { return mLock.TryLock(); }

private:
    mutable Internal::PlatformLock mLock;
    [[maybe_unused]] void* mWord = nullptr;
};

/// Locks a section from construction to destruction. The section must outlive it. Belongs to one thread. Never throws.
class TVXCORE_SCOPED_LOCK CriticalSectionLock
{
public:
    explicit CriticalSectionLock(const CriticalSection& inSection) TVXCORE_ACQUIRES(inSection) : mSection(&inSection)
    {
        mSection->Lock();
    }

    /// Locks the section. The string documents the call site and is not used.
    CriticalSectionLock(const CriticalSection& inSection, const char*) TVXCORE_ACQUIRES(inSection)
        : CriticalSectionLock(inSection)
    {
    }

    ~CriticalSectionLock() TVXCORE_RELEASES() { mSection->Unlock(); }

    CriticalSectionLock(const CriticalSectionLock&) = delete;
    CriticalSectionLock& operator=(const CriticalSectionLock&) = delete;

private:
    const CriticalSection* mSection;
};

/// Try-locks a section once. Unlocks the section at destruction if the try-lock succeeded. The section must outlive the
/// lock object. Belongs to one thread. Never throws.
class CriticalSectionTryLock
{
public:
    explicit CriticalSectionTryLock(const CriticalSection& inSection)
        : mSection(&inSection), mIsLocked(inSection.TryLock())
    {
    }

    ~CriticalSectionTryLock()
    {
        if (mIsLocked) {
            mSection->Unlock();
        }
    }

    CriticalSectionTryLock(const CriticalSectionTryLock&) = delete;
    CriticalSectionTryLock& operator=(const CriticalSectionTryLock&) = delete;

    /// Returns whether the try-lock succeeded.
    bool IsLocked() const { return mIsLocked; }

private:
    const CriticalSection* mSection;
    bool mIsLocked;
};

} // namespace ORL
