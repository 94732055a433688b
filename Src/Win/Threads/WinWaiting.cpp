#include <Platform/Waiting.h>

#include <windows.h>

namespace ORL {
namespace Sync {
namespace Platform {

void SleepMilliseconds_Impl(int inMilliseconds)
{
    ::Sleep(static_cast<DWORD>(inMilliseconds));
}

} // namespace Platform
} // namespace Sync
} // namespace ORL
