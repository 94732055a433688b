#include <Executors/CoreMutex.h>

#include <CorePlatform/Thread.h>

namespace tvxcore {
namespace threads {

namespace {

// Critical sections take a few instructions, so the owner usually unlocks before a waiter could fall asleep.
constexpr int kSpinTurns = 100;

// Spinning is useless on one processor: the owner cannot run meanwhile.
bool MaySpin() noexcept
{
    static std::atomic<unsigned int> sProcessors{0};
    unsigned int processors = sProcessors.load(std::memory_order_relaxed);
    if (processors == 0) {
        processors = Platform::ProcessorCount_Impl();
        sProcessors.store(processors, std::memory_order_relaxed);
    }
    return processors > 1;
}

} // namespace

// Locks the word itself, which clang's analysis does not recognise as a lock.
void CoreMutex::LockSlowly() noexcept TVXCORE_UNCHECKED_LOCKING
{
    if (MaySpin()) {
        for (int turn = 0; turn < kSpinTurns; ++turn) {
            __builtin_ia32_pause();
            if (mState.load(std::memory_order_relaxed) == kFree && try_lock()) {
                return;
            }
        }
    }
    // A thread that has slept sets kHeldAndWanted, since others may still sleep: at worst this causes one needless
    // wake.
    while (mState.exchange(kHeldAndWanted, std::memory_order_acquire) != kFree) {
        if (Platform::ProcessIsEnding_Impl()) {
            return; // the owner has been stopped, and no other thread is left
        }
        Platform::WaitOnWord_Impl(mState, kHeldAndWanted, Platform::kEndless);
    }
}

} // namespace threads
} // namespace tvxcore
