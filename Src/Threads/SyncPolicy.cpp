#include <Sync/Policy.h>

#include <Platform/Waiting.h>

namespace ORL {
namespace Sync {

int SystemPolicy::SpinTurns()
{
    // With one processor the thread that is waited for cannot run while we look.
    static const int turns = Platform::CountProcessors_Impl() > 1 ? 200 : 0;
    return turns;
}

void SystemPolicy::SleepMilliseconds(int inMilliseconds)
{
    Platform::SleepMilliseconds_Impl(inMilliseconds);
}

} // namespace Sync
} // namespace ORL
