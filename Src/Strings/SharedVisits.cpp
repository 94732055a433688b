#include <SharedVisits.h>

#include <Sync/Backoff.h>

namespace ORL {

// A visit takes less than a microsecond unless the visitor has been preempted. The writer then yields its processor,
// and finally sleeps, because a visitor of lower priority might never run beside a yielding writer.
void SystemVisits::WaitForAMoment(int inTurn)
{
    constexpr Sync::Backoff kBackoff = {200, 400};
    kBackoff.Wait(inTurn);
}

} // namespace ORL
