#include <CoreMutex.h>

namespace tvxcore {
namespace threads {

// Whoever has slept takes the lock as "wanted", since others may still sleep behind it: at worst one wake too many.
void CoreMutex::LockSlowly() noexcept
{
    while (mState.exchange(kHeldAndWanted, std::memory_order_acquire) != kFree) {
        Platform::WaitOnWord_Impl(mState, kHeldAndWanted, Platform::kEndless);
    }
}

} // namespace threads
} // namespace tvxcore
