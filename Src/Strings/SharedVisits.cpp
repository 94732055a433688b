#include <SharedVisits.h>

#include <chrono>
#include <thread>

namespace ORL {

// A visit takes less than a microsecond unless the visitor has been preempted. The writer then yields its processor,
// and finally sleeps, because a visitor of lower priority might never run beside a yielding writer.
void SystemVisits::WaitForAMoment(int inTurn)
{
    constexpr int kPauses = 200;
    constexpr int kYields = 400;
    if (inTurn < kPauses) {
        __builtin_ia32_pause();
    } else if (inTurn < kYields) {
        std::this_thread::yield();
    } else {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

} // namespace ORL
