#include <CorePlatform/Machine.h>

#include <windows.h>

namespace tvxcore {
namespace utility {
namespace Platform {

std::uint64_t TotalPhysicalMemory_Impl() noexcept
{
    MEMORYSTATUSEX status = {};
    status.dwLength = sizeof(status);
    return ::GlobalMemoryStatusEx(&status) != FALSE ? status.ullTotalPhys : 0;
}

} // namespace Platform
} // namespace utility
} // namespace tvxcore
