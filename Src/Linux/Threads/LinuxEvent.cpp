// Events, each over one futex word. The word and the number of waiters share 64 bits, so signalling is one atomic
// operation, after which the event is not accessed again: the released thread may destroy it.
#include <Platform/Event.h>

#include <tvxcore/SmallBlockAllocator.h>

#include <linux/futex.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <climits>
#include <new>

namespace ORL {
namespace Events {
namespace Platform {

namespace {

constexpr unsigned long kErrorInvalidHandle = 6;
constexpr unsigned long kErrorNotEnoughMemory = 8;

constexpr std::uint64_t kSignalled = 1;          // the low half: the futex word
constexpr std::uint64_t kOneWaiter = 1ull << 32; // the high half: waiters asleep or about to sleep

struct FutexEvent
{
    std::atomic<std::uint64_t> mState;
    bool mManualReset;

    // The low half of the state in memory, which the kernel compares.
    std::uint32_t* FutexWord() { return reinterpret_cast<std::uint32_t*>(&mState); }
};
static_assert(sizeof(std::atomic<std::uint64_t>) == 8 && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__,
              "the futex word is the low half of the state");

std::atomic<CreateFault> sCreateFault{nullptr};

timespec DeadlineAfter(std::uint32_t inMilliseconds)
{
    timespec deadline;
    ::clock_gettime(CLOCK_MONOTONIC, &deadline);
    deadline.tv_sec += static_cast<time_t>(inMilliseconds / 1000);
    deadline.tv_nsec += static_cast<long>(inMilliseconds % 1000) * 1000000;
    if (deadline.tv_nsec >= 1000000000) {
        deadline.tv_nsec -= 1000000000;
        ++deadline.tv_sec;
    }
    return deadline;
}

// Consumes the signal if it is set, and subtracts inLeaving from the waiters. Guesses the usual state instead of
// reading it: a compare-and-set that does not wait for a read is a fifth faster.
bool TakeSignal(FutexEvent& ioEvent, std::uint64_t inLeaving)
{
    std::uint64_t state = kSignalled + inLeaving;
    while ((state & kSignalled) != 0) {
        const std::uint64_t used = ioEvent.mManualReset ? 0 : kSignalled;
        if (ioEvent.mState.compare_exchange_weak(state, state - used - inLeaving)) {
            return true;
        }
    }
    return false;
}

// The caller must be counted as a waiter. Returns 0 or ETIMEDOUT; after any other wake-up the caller polls again.
int SleepAtWord(FutexEvent& ioEvent, const timespec* inDeadline)
{
    const long result = ::syscall(SYS_futex, ioEvent.FutexWord(), FUTEX_WAIT_BITSET_PRIVATE, 0, inDeadline, nullptr,
                                  FUTEX_BITSET_MATCH_ANY);
    return result == -1 && errno == ETIMEDOUT ? ETIMEDOUT : 0;
}

// Runs when the wait of a thread has timed out. Consumes a signal that has arrived since the timeout, or removes the
// thread from the waiters.
WaitOutcome LeaveAfterTimeout(FutexEvent& ioEvent)
{
    std::uint64_t state = ioEvent.mState.load(std::memory_order_relaxed);
    while ((state & kSignalled) == 0) {
        if (ioEvent.mState.compare_exchange_weak(state, state - kOneWaiter)) {
            return WaitOutcome::kTimeout;
        }
    }
    return TakeSignal(ioEvent, kOneWaiter) ? WaitOutcome::kSignalled : LeaveAfterTimeout(ioEvent);
}

WaitOutcome WaitAsleep(FutexEvent& ioEvent, std::uint32_t inMilliseconds)
{
    timespec limit;
    const timespec* deadline = nullptr;
    if (inMilliseconds != kEndless) {
        limit = DeadlineAfter(inMilliseconds);
        deadline = &limit;
    }
    ioEvent.mState.fetch_add(kOneWaiter);
    while (!TakeSignal(ioEvent, kOneWaiter)) {
        if (SleepAtWord(ioEvent, deadline) == ETIMEDOUT) {
            return LeaveAfterTimeout(ioEvent);
        }
    }
    return WaitOutcome::kSignalled;
}

} // namespace

unsigned long CreateEvent_Impl(bool inManualReset, bool inInitiallySignalled, void*& outEvent)
{
    outEvent = nullptr;
    const CreateFault fault = sCreateFault.load(std::memory_order_relaxed);
    if (const unsigned long error = fault != nullptr ? fault() : 0; error != 0) {
        return error;
    }
    void* block = tvxcore::utility::SmallBlockAllocator::Allocate(sizeof(FutexEvent));
    if (block == nullptr) {
        return kErrorNotEnoughMemory;
    }
    outEvent = ::new (block) FutexEvent{{inInitiallySignalled ? kSignalled : 0}, inManualReset};
    return 0;
}

void DestroyEvent_Impl(void* inEvent)
{
    tvxcore::utility::SmallBlockAllocator::Dispose(inEvent, sizeof(FutexEvent));
}

unsigned long SetEvent_Impl(void* inEvent)
{
    if (inEvent == nullptr) {
        return kErrorInvalidHandle;
    }
    FutexEvent& event = *static_cast<FutexEvent*>(inEvent);
    const int released = event.mManualReset ? INT_MAX : 1;
    std::uint32_t* const word = event.FutexWord();
    // Writes the signal even if it is already set: the write publishes the caller's own stores. Guesses the state
    // first, as TakeSignal does.
    std::uint64_t state = 0;
    while (!event.mState.compare_exchange_weak(state, state | kSignalled)) {
    }
    if (state >= kOneWaiter && (state & kSignalled) == 0) {
        // The event may be destroyed from now on. The kernel uses the address only as a number and does not read the
        // memory. A wake-up that finds no waiter or an unrelated waiter is harmless, and a failed wake-up is ignored.
        ::syscall(SYS_futex, word, FUTEX_WAKE_PRIVATE, released, nullptr, nullptr, 0);
    }
    return 0;
}

WaitOutcome WaitForEvent_Impl(void* inEvent, std::uint32_t inMilliseconds)
{
    if (inEvent == nullptr) {
        return WaitOutcome::kFailed;
    }
    FutexEvent& event = *static_cast<FutexEvent*>(inEvent);
    // A poll that finds no signal must not write: other threads may poll the same event in a loop.
    if (inMilliseconds == 0 && (event.mState.load(std::memory_order_relaxed) & kSignalled) == 0) {
        return WaitOutcome::kTimeout;
    }
    if (TakeSignal(event, 0)) {
        return WaitOutcome::kSignalled;
    }
    return inMilliseconds == 0 ? WaitOutcome::kTimeout : WaitAsleep(event, inMilliseconds);
}

void InstallCreateFault(CreateFault inFault)
{
    sCreateFault.store(inFault, std::memory_order_relaxed);
}

} // namespace Platform
} // namespace Events
} // namespace ORL
