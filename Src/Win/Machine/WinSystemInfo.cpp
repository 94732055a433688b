#include <Platform/SystemInfo.h>

#include <windows.h>

namespace ORL {
namespace SystemInfo {
namespace Platform {

namespace {

// Returns all zeros if the call fails.
MEMORYSTATUSEX MemoryStatus()
{
    MEMORYSTATUSEX status = {};
    status.dwLength = sizeof(status);
    return ::GlobalMemoryStatusEx(&status) != FALSE ? status : MEMORYSTATUSEX{};
}

} // namespace

unsigned __int64 GetAvailablePhysicalMemory_Impl()
{
    return MemoryStatus().ullAvailPhys;
}

unsigned __int64 GetTotalVirtualMemory_Impl()
{
    return MemoryStatus().ullTotalVirtual;
}

bool ProcessorSupportsRDTSCInstruction_Impl()
{
    return ::IsProcessorFeaturePresent(PF_RDTSC_INSTRUCTION_AVAILABLE) == 1;
}

} // namespace Platform
} // namespace SystemInfo
} // namespace ORL
