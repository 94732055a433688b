#include <Platform/Waiting.h>

#include <sched.h>
#include <time.h>

#include <cerrno>

namespace ORL {
namespace Sync {
namespace Platform {

int CountProcessors_Impl()
{
    cpu_set_t allowed;
    // More processors than the set has room for are more than one.
    return ::sched_getaffinity(0, sizeof(allowed), &allowed) == 0 ? CPU_COUNT(&allowed) : 2;
}

void SleepMilliseconds_Impl(int inMilliseconds)
{
    timespec left{inMilliseconds / 1000, (inMilliseconds % 1000) * 1000000L};
    while (::nanosleep(&left, &left) == -1 && errno == EINTR) {
    }
}

} // namespace Platform
} // namespace Sync
} // namespace ORL
