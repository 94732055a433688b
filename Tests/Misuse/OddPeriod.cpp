// Converts a time to a duration whose period makes the conversion overflow.
//
// Expected: the period of the duration is too fine or too odd for ticks
#include <tvxmediatypes/TickTime.h>

#if ORL_MISUSE == 1
using Period = std::ratio<1, 999999999989>;
#else
using Period = std::ratio<1, 999983>;
#endif

int main()
{
    return static_cast<int>(
        tvxmediatypes::TickTime(1.0).ToDuration<std::chrono::duration<long long, Period>>().count());
}
