// This library's mutex: one word, without a system object. The mutex needs neither construction at run time nor
// destruction, so it works before static construction, after static destruction and during unloading.
#pragma once

#include <CorePlatform/WordWait.h>
#include <tvxcore/ThreadSafety.h>

#include <atomic>
#include <cstdint>

namespace tvxcore {
namespace threads {

/// Not recursive.
class TVXCORE_LOCK CoreMutex
{
public:
    constexpr CoreMutex() noexcept = default;
    CoreMutex(const CoreMutex&) = delete;
    CoreMutex& operator=(const CoreMutex&) = delete;

    void lock() noexcept TVXCORE_ACQUIRES()
    {
        std::uint32_t expected = kFree;
        if (!mState.compare_exchange_strong(expected, kHeld, std::memory_order_acquire, std::memory_order_relaxed)) {
            LockSlowly();
        }
    }

    bool try_lock() noexcept TVXCORE_TRIES_TO_ACQUIRE(true)
    {
        std::uint32_t expected = kFree;
        return mState.compare_exchange_strong(expected, kHeld, std::memory_order_acquire, std::memory_order_relaxed);
    }

    void unlock() noexcept TVXCORE_RELEASES()
    {
        if (mState.exchange(kFree, std::memory_order_release) == kHeldAndWanted) {
            Platform::WakeOneOnWord_Impl(mState);
        }
    }

private:
    enum : std::uint32_t { kFree, kHeld, kHeldAndWanted };

    void LockSlowly() noexcept TVXCORE_ACQUIRES();

    std::atomic<std::uint32_t> mState{kFree};
};

/// Holds the mutex until the end of the scope.
class TVXCORE_SCOPED_LOCK CoreMutexLock
{
public:
    explicit CoreMutexLock(CoreMutex& inMutex) noexcept TVXCORE_ACQUIRES(inMutex) : mMutex(inMutex) { inMutex.lock(); }
    ~CoreMutexLock() TVXCORE_RELEASES() { mMutex.unlock(); }
    CoreMutexLock(const CoreMutexLock&) = delete;
    CoreMutexLock& operator=(const CoreMutexLock&) = delete;

private:
    CoreMutex& mMutex;
};

} // namespace threads
} // namespace tvxcore
