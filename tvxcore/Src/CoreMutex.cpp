#include <CoreMutex.h>

#include <CorePlatform/Thread.h>

namespace tvxcore {
namespace threads {

namespace {

// What the lock guards takes a few instructions, so its holder is done before a sleep would have begun.
constexpr int kSpinTurns = 100;

// With one processor the holder cannot go on while another thread spins.
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

void CoreMutex::LockSlowly() noexcept
{
    if (MaySpin()) {
        for (int turn = 0; turn < kSpinTurns; ++turn) {
            __builtin_ia32_pause();
            if (mState.load(std::memory_order_relaxed) == kFree && try_lock()) {
                return;
            }
        }
    }
    // Whoever has slept takes the lock as "wanted", since others may still sleep behind it: at worst one wake too many.
    while (mState.exchange(kHeldAndWanted, std::memory_order_acquire) != kFree) {
        if (Platform::ProcessIsEnding_Impl()) {
            return; // its holder is no more, and there is nobody left to shut out
        }
        Platform::WaitOnWord_Impl(mState, kHeldAndWanted, Platform::kEndless);
    }
}

} // namespace threads
} // namespace tvxcore
