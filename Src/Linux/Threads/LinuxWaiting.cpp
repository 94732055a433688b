#include <Platform/Waiting.h>

#include <time.h>

#include <cerrno>

namespace ORL {
namespace Sync {
namespace Platform {

void SleepMilliseconds_Impl(int inMilliseconds)
{
    timespec left{inMilliseconds / 1000, (inMilliseconds % 1000) * 1000000L};
    while (::nanosleep(&left, &left) == -1 && errno == EINTR) {
    }
}

} // namespace Platform
} // namespace Sync
} // namespace ORL
