#include <Platform/SystemInfo.h>

#include "../Calls/SystemCalls.h"
#include "LinuxProcFile.h"

#include <algorithm>
#include <string_view>
#include <sys/prctl.h>
#include <sys/resource.h>

namespace ORL {
namespace SystemInfo {
namespace Platform {

// Parses the third line, "MemAvailable:   22742636 kB". Kernels before 3.14 have no such line.
unsigned __int64 GetAvailablePhysicalMemory_Impl()
{
    char buffer[1024];
    std::size_t size = 0;
    if (Linux::ReadProcFile("/proc/meminfo", buffer, sizeof(buffer), size) != 0) {
        return 0;
    }
    constexpr std::string_view kName = "\nMemAvailable:";
    std::string_view text(buffer, size);
    const std::size_t line = text.find(kName);
    if (line == std::string_view::npos) {
        return 0;
    }
    text.remove_prefix(line + kName.size());
    std::uint64_t kilobytes = 0;
    return Linux::TakeNumber(text, kilobytes) ? kilobytes * 1024 : 0;
}

// Returns 2^47 bytes minus the last page, or the resource limit if that is lower.
unsigned __int64 GetTotalVirtualMemory_Impl()
{
    constexpr unsigned __int64 kUserSpace = 0x7FFFFFFFF000;
    struct rlimit limit
    {
    };
    if (Linux::System().mGetResourceLimit(RLIMIT_AS, &limit) != 0) {
        return 0;
    }
    return std::min<unsigned __int64>(limit.rlim_cur, kUserSpace);
}

// Every x86-64 processor has RDTSC, but a process may have disabled it for itself.
bool ProcessorSupportsRDTSCInstruction_Impl()
{
    int mode = PR_TSC_ENABLE;
    return Linux::System().mGetTscMode(&mode) != 0 || mode == PR_TSC_ENABLE;
}

} // namespace Platform
} // namespace SystemInfo
} // namespace ORL
