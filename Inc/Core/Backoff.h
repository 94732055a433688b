// Repeated short waits, for code without an event to wait for.
#pragma once

#include <limits>

namespace ORL {
namespace Sync {

/// Runs one iteration of a spin: the processor saves power and lets the other hardware thread of its core run. tvxcore
/// has its own such function: sharing this one would need a public header, and hosts do not spin.
inline void PauseProcessor() noexcept
{
    __builtin_ia32_pause();
}

/// A repeated wait that escalates: the turns before mFirstYield pause the processor, the turns before mFirstSleep
/// yield it, and later turns sleep for a millisecond each, because a yield does not let threads of lower priority run.
struct Backoff
{
    int mFirstYield;
    int mFirstSleep = std::numeric_limits<int>::max();

    /// Performs one turn of the wait. inTurn is the number of earlier turns.
    void Wait(int inTurn) const;
};

} // namespace Sync
} // namespace ORL
