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
    // The call fails if the machine has more processors than the set; then there is more than one.
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
