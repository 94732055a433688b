#include <tvxcore/SystemInfo.h>

#include <windows.h>

namespace tvxcore {
namespace utility {

unsigned __int64 TotalPhysicalMemory()
{
    MEMORYSTATUSEX status = {};
    status.dwLength = sizeof(status);
    return ::GlobalMemoryStatusEx(&status) != FALSE ? status.ullTotalPhys : 0;
}

unsigned long CPUCount()
{
    DWORD_PTR processMask = 0;
    DWORD_PTR systemMask = 0;
    // Both masks are 0 when the process has threads in several groups of processors.
    if (::GetProcessAffinityMask(::GetCurrentProcess(), &processMask, &systemMask) != FALSE && processMask != 0) {
        return static_cast<unsigned long>(__builtin_popcountll(processMask));
    }
    const DWORD processors = ::GetActiveProcessorCount(ALL_PROCESSOR_GROUPS);
    return processors != 0 ? processors : 1;
}

} // namespace utility
} // namespace tvxcore
