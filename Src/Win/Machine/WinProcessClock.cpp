#include <Platform/ProcessClock.h>

#include <ctime>

namespace ORL {
namespace ProcessClock {
namespace Platform {

static_assert(CLOCKS_PER_SEC == 1000, "the clock counts milliseconds");

std::int64_t GetMilliseconds_Impl() noexcept
{
    return std::clock();
}

} // namespace Platform
} // namespace ProcessClock
} // namespace ORL
