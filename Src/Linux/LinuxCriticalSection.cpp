#include <Platform/CriticalSection.h>

#include <atomic>
#include <cstdint>
#include <linux/futex.h>
#include <new>
#include <sched.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace ORL {
namespace Platform {

namespace {

enum LockState : std::uint32_t { kFree = 0, kHeld = 1, kHeldWithSleepers = 2 };

// All zeros is an unlocked lock, so a lock of static life works before its constructor has run and after its
// destructor.
struct FutexLock
{
    std::atomic<std::uint32_t> mState;
    std::uint32_t mDepth;               // how often the holder has taken it again; touched by the holder only
    std::atomic<std::uintptr_t> mOwner; // the holder's word, 0 for nobody
};

static_assert(sizeof(FutexLock) <= kLockSize && alignof(FutexLock) <= 8, "fits the opaque room");
static_assert(std::atomic<std::uintptr_t>::is_always_lock_free, "the words of a lock need no lock");

FutexLock& AsLock(void* inLock)
{
    return *static_cast<FutexLock*>(inLock);
}

// The address of the thread's control block: one instruction, never 0, and no two living threads share it. A forked
// child keeps its thread's address, so it goes on holding what that thread held.
std::uintptr_t ThisThread()
{
    std::uintptr_t word;
    __asm__("movq %%fs:0, %0" : "=r"(word));
    return word;
}

void SleepWhileHeldWithSleepers(std::atomic<std::uint32_t>& ioState)
{
    ::syscall(SYS_futex, &ioState, FUTEX_WAIT_PRIVATE, kHeldWithSleepers, nullptr, nullptr, 0);
}

void WakeOneSleeper(std::atomic<std::uint32_t>& ioState)
{
    ::syscall(SYS_futex, &ioState, FUTEX_WAKE_PRIVATE, 1, nullptr, nullptr, 0);
}

bool TakeFreeLock(std::atomic<std::uint32_t>& ioState)
{
    std::uint32_t expected = kFree;
    return ioState.compare_exchange_strong(expected, kHeld, std::memory_order_acquire, std::memory_order_relaxed);
}

// Looking again a few times is cheaper than a sleep when the holder runs on another processor, and a waste of the
// holder's time when there is only one.
int SpinCount()
{
    static const int count = [] {
        cpu_set_t allowed;
        const bool known = ::sched_getaffinity(0, sizeof(allowed), &allowed) == 0;
        return known && CPU_COUNT(&allowed) > 1 ? 40 : 0;
    }();
    return count;
}

__attribute__((noinline)) void WaitForLock(std::atomic<std::uint32_t>& ioState)
{
    for (int i = SpinCount(); i > 0; --i) {
        if (ioState.load(std::memory_order_relaxed) == kFree && TakeFreeLock(ioState)) {
            return;
        }
        __builtin_ia32_pause();
    }
    // Whoever takes the lock here cannot know whether others sleep, so it leaves the mark that wakes one of them.
    while (ioState.exchange(kHeldWithSleepers, std::memory_order_acquire) != kFree) {
        SleepWhileHeldWithSleepers(ioState);
    }
}

} // namespace

void InitializeLock_Impl(void* ioLock)
{
    ::new (ioLock) FutexLock{};
}

void DeleteLock_Impl(void*)
{
}

void EnterLock_Impl(void* ioLock)
{
    FutexLock& lock = AsLock(ioLock);
    const std::uintptr_t self = ThisThread();
    if (lock.mOwner.load(std::memory_order_relaxed) == self) {
        ++lock.mDepth;
        return;
    }
    if (!TakeFreeLock(lock.mState)) {
        WaitForLock(lock.mState);
    }
    lock.mOwner.store(self, std::memory_order_relaxed);
}

void LeaveLock_Impl(void* ioLock)
{
    FutexLock& lock = AsLock(ioLock);
    if (lock.mDepth != 0) {
        --lock.mDepth;
        return;
    }
    lock.mOwner.store(0, std::memory_order_relaxed);
    if (lock.mState.exchange(kFree, std::memory_order_release) == kHeldWithSleepers) {
        WakeOneSleeper(lock.mState);
    }
}

bool TryEnterLock_Impl(void* ioLock)
{
    FutexLock& lock = AsLock(ioLock);
    const std::uintptr_t self = ThisThread();
    if (lock.mOwner.load(std::memory_order_relaxed) == self) {
        ++lock.mDepth;
        return true;
    }
    if (!TakeFreeLock(lock.mState)) {
        return false;
    }
    lock.mOwner.store(self, std::memory_order_relaxed);
    return true;
}

} // namespace Platform
} // namespace ORL
