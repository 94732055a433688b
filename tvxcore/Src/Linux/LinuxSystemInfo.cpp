#include <tvxcore/SystemInfo.h>

#include <cstddef>
#include <sched.h>
#include <unistd.h>

namespace tvxcore {
namespace utility {

unsigned __int64 TotalPhysicalMemory()
{
    const long pages = ::sysconf(_SC_PHYS_PAGES);
    const long pageSize = ::sysconf(_SC_PAGESIZE);
    if (pages <= 0 || pageSize <= 0) {
        return 0;
    }
    return static_cast<unsigned __int64>(pages) * static_cast<unsigned __int64>(pageSize);
}

unsigned long CPUCount()
{
    // The kernel refuses a set that is smaller than its own, and does not tell how large that is.
    for (int processors = 1024; processors <= 1024 * 1024; processors *= 2) {
        cpu_set_t* const set = CPU_ALLOC(processors);
        if (set == nullptr) {
            break;
        }
        const std::size_t size = CPU_ALLOC_SIZE(processors);
        const bool known = ::sched_getaffinity(0, size, set) == 0;
        const int count = known ? CPU_COUNT_S(size, set) : 0;
        CPU_FREE(set);
        if (count > 0) {
            return static_cast<unsigned long>(count);
        }
    }
    return 1;
}

} // namespace utility
} // namespace tvxcore
