#include <Platform/Waiting.h>

#include <windows.h>

namespace ORL {
namespace Sync {
namespace Platform {

int CountProcessors_Impl()
{
    DWORD_PTR ours = 0;
    DWORD_PTR machine = 0;
    if (!::GetProcessAffinityMask(::GetCurrentProcess(), &ours, &machine) || ours == 0) {
        return 1;
    }
    return __builtin_popcountll(ours);
}

void SleepMilliseconds_Impl(int inMilliseconds)
{
    ::Sleep(static_cast<DWORD>(inMilliseconds));
}

} // namespace Platform
} // namespace Sync
} // namespace ORL
