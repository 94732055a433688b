#include <Sync/Policy.h>

#include <Platform/Waiting.h>

#include <new>
#include <thread>

namespace ORL {
namespace Sync {

namespace {

constexpr int kShortTurns = 200;
constexpr int kTurns = 500;
constexpr int kTurnsBeforeSleep = 10;

} // namespace

int SystemPolicy::SpinTurns()
{
    // With one processor the thread that is waited for cannot run while we look.
    static const int turns = Platform::CountProcessors_Impl() > 1 ? kShortTurns : 0;
    return turns;
}

int SystemPolicy::PatientTurns()
{
    // The machine's processors: the thread that waits may be bound to one, while the queue's threads run on the others.
    static const int turns = std::thread::hardware_concurrency() > 1 ? kTurns : 0;
    return turns;
}

// The short turns take a few microseconds. All together take twice as long as it takes to wake a thread on an idle processor,
// which is what they may save on either side; the longer ones give the processor to whoever wants it, since the thread that is
// waited for may be one of these.
void SystemPolicy::Pause(int inTurn)
{
    if (inTurn < kShortTurns) {
        __builtin_ia32_pause();
    } else {
        std::this_thread::yield();
    }
}

void SystemPolicy::GiveWay(int inTurn)
{
    if (inTurn < kTurnsBeforeSleep) {
        std::this_thread::yield();
    } else {
        SleepMilliseconds(1); // a yield lets no thread of lower priority run, and many that yield keep a loaded machine busy
    }
}

void SystemPolicy::SleepOn(Condition& ioCondition, MutexLock& ioLock)
{
    try {
        ioCondition.wait(ioLock);
    } catch (const std::bad_alloc&) {
        // On Windows the condition variable takes memory for each wait. Destructors wait too, and must not throw.
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
