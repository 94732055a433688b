#include <Core/Backoff.h>

#include <Platform/Waiting.h>

#include <thread>

namespace ORL {
namespace Sync {

void Backoff::Wait(int inTurn) const
{
    if (inTurn < mFirstYield) {
        PauseProcessor();
    } else if (inTurn < mFirstSleep) {
        std::this_thread::yield();
    } else {
        Platform::SleepMilliseconds_Impl(1);
    }
}

} // namespace Sync
} // namespace ORL
