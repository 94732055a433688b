// The statistics of the allocator, with a replaceable source of memory regions.
#pragma once

#include <Platform/MemoryRegions.h>

namespace ORL {

/// The source of memory regions and of the number of heaps.
class RegionSource
{
public:
    virtual ~RegionSource() = default;

    virtual bool QueryRegion(std::uint64_t inAddress, MemoryRegions::Region& outRegion) = 0;
    virtual unsigned long HeapCount() = 0;
};

/// Same as TraceAllocatorStatistics, with ioSource in place of the system.
void TraceAllocatorStatisticsFrom(RegionSource& ioSource);

} // namespace ORL
