// Floor: Core
#include <ORLPlatformLock.h>

#include <Core/Backoff.h>
#include <tvxcore/SystemInfo.h>

#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace ORL {
namespace Internal {

namespace {

// A futex compares 32 bits: the low half of the word, which contains the mark. Two owners may have the same low half,
// but only the mark decides whether a sleeper will be woken.
const void* LowHalf(const std::atomic<std::uintptr_t>& inWord)
{
    static_assert(sizeof(inWord) == 8 && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "the low half comes first");
    return &inWord;
}

void SleepWhileEqual(const std::atomic<std::uintptr_t>& inWord, std::uintptr_t inValue)
{
    ::syscall(SYS_futex, LowHalf(inWord), FUTEX_WAIT_PRIVATE, static_cast<std::uint32_t>(inValue), nullptr, nullptr, 0);
}

// If the owner runs on another processor, spinning briefly is cheaper than sleeping. With a single processor, spinning
// would only waste the owner's time.
bool MaySpin()
{
    static const bool may = tvxcore::utility::CPUCount() > 1;
    return may;
}

constexpr int kLongestPause = 32;

} // namespace

// Each poll takes the cache line away from the owner, which may need it often. The pauses between polls therefore
// double.
bool PlatformLock::SpinAndTake(std::uintptr_t inSelf)
{
    for (int pause = 1; pause <= kLongestPause; pause *= 2) {
        for (int left = pause; left > 0; --left) {
            Sync::PauseProcessor();
        }
        if (mWord.load(std::memory_order_relaxed) == 0 && Take(inSelf)) {
            return true;
        }
    }
    return false;
}

void PlatformLock::WaitAndTake(std::uintptr_t inSelf)
{
    if (TakeAgain(inSelf) || (MaySpin() && SpinAndTake(inSelf))) {
        return;
    }
    // This thread cannot know whether others sleep, so it acquires the lock with the mark that makes Unlock wake one.
    while (!Take(inSelf | kSleepers)) {
        std::uintptr_t holder = mWord.load(std::memory_order_relaxed);
        const bool isMarked = (holder & kSleepers) != 0;
        if (holder != 0
            && (isMarked || mWord.compare_exchange_strong(holder, holder | kSleepers, std::memory_order_relaxed))) {
            SleepWhileEqual(mWord, holder | kSleepers);
        }
    }
}

void PlatformLock::WakeOneSleeper()
{
    ::syscall(SYS_futex, LowHalf(mWord), FUTEX_WAKE_PRIVATE, 1, nullptr, nullptr, 0);
}

} // namespace Internal
} // namespace ORL
