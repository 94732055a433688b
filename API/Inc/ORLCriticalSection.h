// Floor: Core
// The one lock of the library, and its two scoped companions.
//
//   ORL::CriticalSectionLock lock(mLock);        // held until the end of the scope
//   ORL::CriticalSectionTryLock attempt(mLock);  // held until the end of the scope if attempt.IsLocked()
#pragma once

#include <ORLPlatformLock.h>

namespace ORL {

/// A recursive lock: the thread that holds it may take it again, and owes one Unlock for each Lock. No ordering or
/// fairness between waiting threads is promised. What one holder wrote is visible to the next.
///
/// Every operation may be called from any thread. The operations are const, so that a const object can be guarded by
/// a lock it is only shown. Unlock by a thread that does not hold the lock, and destruction while it is held, are
/// undefined. Threads that are waiting sleep; they do not burn a processor.
class CriticalSection
{
public:
    // Written out, since a const section, or a const object that has one, needs a constructor that is.
    ORL_LOCK_CONSTEXPR CriticalSection() noexcept(noexcept(Internal::PlatformLock())) {}
    CriticalSection(const CriticalSection&) = delete;
    CriticalSection& operator=(const CriticalSection&) = delete;

    void Lock() const { mLock.Lock(); }
    void Unlock() const { mLock.Unlock(); }

    /// Takes the lock if that needs no waiting. True when the lock was taken; Unlock is then owed.
    bool TryLock() const { return mLock.TryLock(); }

private:
    mutable Internal::PlatformLock mLock;
    [[maybe_unused]] void* mWord = nullptr;
};

/// Holds a section from construction to destruction.
class CriticalSectionLock
{
public:
    explicit CriticalSectionLock(const CriticalSection& inSection) : mSection(&inSection) { mSection->Lock(); }

    /// The same; the text is for the reader of the code.
    CriticalSectionLock(const CriticalSection& inSection, const char*) : CriticalSectionLock(inSection) {}

    ~CriticalSectionLock() { mSection->Unlock(); }

    CriticalSectionLock(const CriticalSectionLock&) = delete;
    CriticalSectionLock& operator=(const CriticalSectionLock&) = delete;

private:
    const CriticalSection* mSection;
};

/// Tries once to take a section, and gives it back at destruction if the try succeeded.
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

    /// Whether the one try took the section.
    bool IsLocked() const { return mIsLocked; }

private:
    const CriticalSection* mSection;
    bool mIsLocked;
};

} // namespace ORL
