#include <CorePlatform/Machine.h>

#include <unistd.h>

namespace tvxcore {
namespace utility {
namespace Platform {

std::uint64_t TotalPhysicalMemory_Impl() noexcept
{
    const long pages = ::sysconf(_SC_PHYS_PAGES);
    const long pageSize = ::sysconf(_SC_PAGESIZE);
    if (pages <= 0 || pageSize <= 0) {
        return 0;
    }
    return static_cast<std::uint64_t>(pages) * static_cast<std::uint64_t>(pageSize);
}

} // namespace Platform
} // namespace utility
} // namespace tvxcore
