#include <Executors/CoreClock.h>

#include <CorePlatform/Thread.h>
#include <Executors/RepeatTimer.h>

#include <atomic>

namespace tvxcore {
namespace threads {

namespace {

constexpr std::int64_t kSystemClock = -1;

std::atomic<std::int64_t> sManualNow{kSystemClock};

} // namespace

std::int64_t ClockNow()
{
    const std::int64_t manual = sManualNow;
    return manual != kSystemClock ? manual : Platform::MonotonicNanoseconds_Impl();
}

bool ClockIsManual()
{
    return sManualNow != kSystemClock;
}

ManualClock::ManualClock()
{
    sManualNow = Platform::MonotonicNanoseconds_Impl();
}

ManualClock::~ManualClock()
{
    sManualNow = kSystemClock;
}

void ManualClock::Advance(std::int64_t inNanoseconds)
{
    sManualNow += inNanoseconds;
    RepeatTimer::WaitUntilNothingIsDue();
}

} // namespace threads
} // namespace tvxcore
