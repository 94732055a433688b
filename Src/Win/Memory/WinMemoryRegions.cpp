#include <Platform/MemoryRegions.h>

#include <windows.h>

namespace ORL {
namespace MemoryRegions {
namespace Platform {

// Empty: a walk has no state, because the system can query any address directly.
struct Walk
{
};

namespace {

Walk sWalk;

} // namespace

Walk* OpenWalk_Impl()
{
    return &sWalk;
}

void CloseWalk_Impl(Walk*)
{
}

bool QueryRegion_Impl(Walk&, std::uint64_t inAddress, Region& outRegion)
{
    MEMORY_BASIC_INFORMATION region;
    static_assert(sizeof(region) == 48, "the record of the 64-bit system");
    if (::VirtualQuery(reinterpret_cast<void*>(inAddress), &region, sizeof(region)) == 0) {
        return false;
    }
    outRegion = Region{region.RegionSize, region.State};
    return true;
}

unsigned long HeapCount_Impl()
{
    return ::GetProcessHeaps(0, nullptr);
}

} // namespace Platform
} // namespace MemoryRegions
} // namespace ORL
