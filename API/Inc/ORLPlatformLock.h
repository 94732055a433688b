// Floor: Core
// What stands inside a CriticalSection. Code outside of it uses ORLCriticalSection.h.
#pragma once

#include <ORLConfig.h>

// A lock of ours is constant-initialised; the system's is not.
#if ORL_LOCK_IS_OURS
#  define ORL_LOCK_CONSTEXPR constexpr
#else
#  define ORL_LOCK_CONSTEXPR
#endif

#if ORL_LOCK_IS_OURS

#include <atomic>
#include <cstdint>

// The thread sanitizer follows the lock through its atomic word; told of it as a lock, it also sees the order of
// several.
#if ORL_THREAD_SANITIZER
#include <sanitizer/tsan_interface.h>
#define ORL_TELL_SANITIZER(call) call
#else
#define ORL_TELL_SANITIZER(call)
#endif

namespace ORL {
namespace Internal {

/// A recursive lock of one word, which names the holder, and the depth beside it. The holder takes it again without a
/// locked operation; a free lock costs one to take and one to give back. All zeros is a free lock and nothing needs
/// an end, so one of static life works at any time, before the first constructor and after the last destructor.
///
/// To look who holds the lock before taking it costs a third of an uncontended pair, since the look must wait for the
/// locked operation before it. So only a lock that was taken again not long ago is looked at; another one is taken
/// first, and the look comes when that fails.
///
/// The short paths stand in this header since a call into the library costs more than they do.
class PlatformLock
{
public:
#if ORL_THREAD_SANITIZER
    ~PlatformLock()
    {
        __tsan_mutex_destroy(this, __tsan_mutex_linker_init);
    }
#endif

    void Lock()
    {
        const std::uintptr_t self = ThisThread();
        if (__builtin_expect(LooksFirst(), 0) && TakeAgain(self)) {
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
        if (LooksFirst() && TakeAgain(self)) {
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
        // From here on another thread may hold the lock, and destroy it: only its address is used after this.
        const std::uintptr_t old = mWord.exchange(0, std::memory_order_release);
        ORL_TELL_SANITIZER(__tsan_mutex_post_unlock(this, 0));
        if ((old & kSleepers) != 0) {
            WakeOneSleeper();
        }
    }

private:
    // Set beside the holder when a thread may be asleep. Thread control blocks are aligned, so their bit 0 is free.
    static constexpr std::uintptr_t kSleepers = 1;

    // So often the lock is looked at, in vain, after its holder has taken it again.
    static constexpr std::uint32_t kLooks = 8;

    // The address of the thread's control block: one instruction, never 0, and no two living threads share it. A
    // forked child keeps its thread's address, so it goes on holding what that thread held.
    static std::uintptr_t ThisThread()
    {
        std::uintptr_t word;
        __asm__("movq %%fs:0, %0" : "=r"(word));
        return word;
    }

    std::uintptr_t Holder() const
    {
        return mWord.load(std::memory_order_relaxed) & ~kSleepers;
    }

    // The sanitizer must hear of a taking before it is done, and not of one that is another turn of the holder's.
    bool LooksFirst() const
    {
        return ORL_THREAD_SANITIZER || mLooks.load(std::memory_order_relaxed) != 0;
    }

    // Another turn, if the thread holds the lock.
    bool TakeAgain(std::uintptr_t inSelf)
    {
        const std::uintptr_t holder = Holder();
        const std::uint32_t looks = mLooks.load(std::memory_order_relaxed);
        if (holder == inSelf) {
            ++mDepth;
            if (looks != kLooks) {
                mLooks.store(kLooks, std::memory_order_relaxed);
            }
            return true;
        }
        if (holder == 0 && looks != 0) {
            mLooks.store(looks - 1, std::memory_order_relaxed);
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
    std::uint32_t mDepth = 0;             // how often the holder has taken it again; the holder's own
    std::atomic<std::uint32_t> mLooks{0}; // how often it is still looked at first; a mere hint, whoever writes it
};

} // namespace Internal
} // namespace ORL

#else

namespace ORL {
namespace Internal {

/// The system's own recursive lock, whose type stays out of this header.
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
