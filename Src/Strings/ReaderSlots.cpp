#include <Strings/ReaderSlots.h>

#include <Core/Backoff.h>

namespace ORL {

// A read access takes less than a microsecond unless the reader has been preempted. The writer then yields its
// processor, and finally sleeps, because a reader of lower priority might never run while a writer yields.
void SystemReaderSlots::BackOff(int inTurn)
{
    constexpr Sync::Backoff kBackoff = {200, 400};
    kBackoff.Wait(inTurn);
}

} // namespace ORL
