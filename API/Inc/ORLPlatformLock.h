// Floor: Core
// The implementation of CriticalSection. Other code uses ORLCriticalSection.h.
#pragma once

#include <ORLConfig.h>

// The library's own lock is constant-initialised; that of the OS is not.
#if ORL_LOCK_IS_OURS
#  define ORL_LOCK_CONSTEXPR constexpr
#else
#  define ORL_LOCK_CONSTEXPR
#endif

#if ORL_LOCK_IS_OURS

#  include <atomic>
#  include <cstdint>

// The thread sanitizer models the lock through its atomic word. With the mutex annotations it also detects lock order
// inversions.
#  if ORL_THREAD_SANITIZER
#    include <sanitizer/tsan_interface.h>
#    define ORL_TELL_SANITIZER(call) call
#  else
#    define ORL_TELL_SANITIZER(call)
#  endif

namespace ORL {
namespace Internal {

/// A recursive lock: one word that identifies the owner, and a recursion depth. Recursive locking needs no atomic
/// read-modify-write; an uncontended lock and unlock need one each. All zeros is an unlocked lock, and the destructor
/// does nothing, so a static lock works before the first constructor and after the last destructor.
///
/// Testing for recursion before trying to lock adds a third to the cost of an uncontended lock and unlock, since the
/// load of the owner must wait for the preceding atomic operation. So only a lock that was recently locked recursively
/// is tested first; any other is tested after a try-lock has failed.
///
/// The fast paths are inline, since a call into the library costs more than they do.
class PlatformLock
{
public:
#  if ORL_THREAD_SANITIZER
    ~PlatformLock() { __tsan_mutex_destroy(this, __tsan_mutex_linker_init); }
#  endif

    void Lock()
    {
        const std::uintptr_t self = ThisThread();
        if (__builtin_expect(ChecksOwnerFirst(), 0) && TakeAgain(self)) {
            return;
        }
        ORL_TELL_SANITIZER(__tsan_mutex_pre_lock(this, __tsan_mutex_linker_init));
        if (__builtin_expect(!Take(self), 0)) {
            WaitAndTake(self);
        }
        ORL_TELL_SANITIZER(__tsan_mutex_post_lock(this, __tsan_mutex_linker_init, 1));
    }

    bool TryLock()
    {
        const std::uintptr_t self = ThisThread();
        if (ChecksOwnerFirst() && TakeAgain(self)) {
            return true;
        }
        ORL_TELL_SANITIZER(__tsan_mutex_pre_lock(this, __tsan_mutex_try_lock));
        const bool taken = Take(self);
        ORL_TELL_SANITIZER(
            __tsan_mutex_post_lock(this, __tsan_mutex_try_lock | (taken ? 0 : __tsan_mutex_try_lock_failed), 1));
        return taken || TakeAgain(self);
    }

    void Unlock()
    {
        if (mDepth != 0) {
            --mDepth;
            return;
        }
        ORL_TELL_SANITIZER(__tsan_mutex_pre_unlock(this, 0));
        // After this exchange another thread may lock and destroy the object, so only the object's address is used.
        const std::uintptr_t old = mWord.exchange(0, std::memory_order_release);
        ORL_TELL_SANITIZER(__tsan_mutex_post_unlock(this, 0));
        if ((old & kSleepers) != 0) {
            WakeOneSleeper();
        }
    }

private:
    // This bit of mWord, which also holds the owner, is set if a thread may be asleep. Thread control blocks are
    // aligned, so bit 0 of their addresses is free.
    static constexpr std::uintptr_t kSleepers = 1;

    // Number of lock operations, after a recursive one, that test for recursion first.
    static constexpr std::uint32_t kOwnerChecks = 8;

    // Returns the address of the thread's control block: one instruction, never 0, and unique among living threads. In
    // a forked child it equals that of the thread that called fork, so the child still owns that thread's locks.
    static std::uintptr_t ThisThread()
    {
        std::uintptr_t word;
        __asm__("movq %%fs:0, %0" : "=r"(word));
        return word;
    }

    std::uintptr_t Holder() const { return mWord.load(std::memory_order_relaxed) & ~kSleepers; }

    // Always true under the sanitizer: only non-recursive acquisitions are reported to it, and before they happen.
    bool ChecksOwnerFirst() const { return ORL_THREAD_SANITIZER || mOwnerChecks.load(std::memory_order_relaxed) != 0; }

    // Locks recursively if the thread is the owner. Returns whether the thread is the owner.
    bool TakeAgain(std::uintptr_t inSelf)
    {
        const std::uintptr_t holder = Holder();
        const std::uint32_t checks = mOwnerChecks.load(std::memory_order_relaxed);
        if (holder == inSelf) {
            ++mDepth;
            if (checks != kOwnerChecks) {
                mOwnerChecks.store(kOwnerChecks, std::memory_order_relaxed);
            }
            return true;
        }
        if (holder == 0 && checks != 0) {
            mOwnerChecks.store(checks - 1, std::memory_order_relaxed);
        }
        return false;
    }

    bool Take(std::uintptr_t inHolder)
    {
        std::uintptr_t expected = 0;
        return mWord.compare_exchange_strong(expected, inHolder, std::memory_order_acquire, std::memory_order_relaxed);
    }

    ORL_API void WaitAndTake(std::uintptr_t inSelf);
    ORL_API void WakeOneSleeper();
    bool SpinAndTake(std::uintptr_t inSelf);

    std::atomic<std::uintptr_t> mWord{0};
    std::uint32_t mDepth = 0; // recursive locks by the owner; accessed only by the owner
    std::atomic<std::uint32_t> mOwnerChecks{
        0}; // remaining lock operations that test first; a hint that any thread may write
};

} // namespace Internal
} // namespace ORL

#else

namespace ORL {
namespace Internal {

/// Wraps the recursive lock of the OS without exposing the type of that lock.
class ORL_API PlatformLock
{
public:
    PlatformLock();
    ~PlatformLock();
    void Lock();
    bool TryLock();
    void Unlock();

private:
    alignas(8) unsigned char mSystemLock[40];
};

} // namespace Internal
} // namespace ORL

#endif
