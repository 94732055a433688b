#include <Sync/Policy.h>

#include <Core/Backoff.h>
#include <Platform/Waiting.h>
#include <tvxcore/SystemInfo.h>

#include <new>
#include <thread>

namespace ORL {
namespace Sync {

namespace {

constexpr int kShortTurns = 200;
constexpr int kLongTurns = 500;
constexpr int kTurnsBeforeSleep = 10;

} // namespace

int SystemPolicy::SpinTurns()
{
    // With one processor the awaited thread cannot run while this one spins.
    static const int turns = tvxcore::utility::CPUCount() > 1 ? kShortTurns : 0;
    return turns;
}

int SystemPolicy::LongSpinTurns()
{
    // Counts the machine's processors: a waiter may be bound to one processor while the queue's threads run on others.
    static const int turns = std::thread::hardware_concurrency() > 1 ? kLongTurns : 0;
    return turns;
}

// The short turns take a few microseconds. All turns together take twice the time needed to wake a thread on an idle
// processor, because spinning can save one wake-up on either side. The longer turns yield the processor, because the
// awaited thread may need it.
void SystemPolicy::Pause(int inTurn)
{
    constexpr Backoff kBackoff = {kShortTurns};
    kBackoff.Wait(inTurn);
}

void SystemPolicy::YieldOrSleep(int inTurn)
{
    constexpr Backoff kBackoff = {0, kTurnsBeforeSleep}; // many threads yielding for long would waste CPU time
    kBackoff.Wait(inTurn);
}

void SystemPolicy::SleepOn(Condition& ioCondition, MutexLock& ioLock)
{
    try {
        ioCondition.wait(ioLock);
    } catch (const std::bad_alloc&) {
        // On Windows each wait on the condition variable allocates memory, which may fail. Destructors wait too and
        // must not throw.
        ioLock.unlock();
        SleepMilliseconds(1);
        ioLock.lock();
    }
}

void SystemPolicy::SleepMilliseconds(int inMilliseconds)
{
    Platform::SleepMilliseconds_Impl(inMilliseconds);
}

} // namespace Sync
} // namespace ORL
