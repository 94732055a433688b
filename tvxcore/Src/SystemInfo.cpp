#include <tvxcore/SystemInfo.h>

#include <CorePlatform/Machine.h>
#include <CorePlatform/Thread.h>

namespace tvxcore {
namespace utility {

unsigned __int64 TotalPhysicalMemory()
{
    return Platform::TotalPhysicalMemory_Impl();
}

unsigned long CPUCount()
{
    return threads::Platform::UsableProcessorCount_Impl();
}

} // namespace utility
} // namespace tvxcore
