// The mutex of this library: one word, without a system object. It needs neither construction at run time nor
// destruction, so it works before static construction, after static destruction and during unloading.
#pragma once

#include <CorePlatform/WordWait.h>

#include <atomic>
#include <cstdint>

namespace tvxcore {
namespace threads {

/// Not recursive. Works with std::lock_guard and std::unique_lock.
class CoreMutex
{
public:
    constexpr CoreMutex() noexcept = default;
    CoreMutex(const CoreMutex&) = delete;
    CoreMutex& operator=(const CoreMutex&) = delete;

    void lock() noexcept
    {
        std::uint32_t expected = kFree;
        if (!mState.compare_exchange_strong(expected, kHeld, std::memory_order_acquire, std::memory_order_relaxed)) {
            LockSlowly();
        }
    }

    bool try_lock() noexcept
    {
        std::uint32_t expected = kFree;
        return mState.compare_exchange_strong(expected, kHeld, std::memory_order_acquire, std::memory_order_relaxed);
    }

    void unlock() noexcept
    {
        if (mState.exchange(kFree, std::memory_order_release) == kHeldAndWanted) {
            Platform::WakeOneOnWord_Impl(mState);
        }
    }

private:
    enum : std::uint32_t { kFree, kHeld, kHeldAndWanted };

    void LockSlowly() noexcept;

    std::atomic<std::uint32_t> mState{kFree};
};

} // namespace threads
} // namespace tvxcore
