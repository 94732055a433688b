#include <Memory/AllocatorStatistics.h>

#include <ORLAllocator.h>
#include <ORLCriticalSection.h>
#include <tvxcore/SmallBlockAllocator.h>
#include <tvxcore/Trace.h>

#include <cstdio>

namespace ORL {

namespace {

using MemoryRegions::Region;
using tvxcore::debug::TraceLine;
using tvxcore::debug::TraceSite;
using Snapshot = tvxcore::utility::SmallBlockAllocator::Metrics::Snapshot;
using Number = unsigned __int64;

constexpr const char* kCategory = "ORL.Allocator";
constexpr long kLevel = 1;

const CriticalSection sStatisticsLock;

// A line of the statistics, with its own trace site.
struct Subject
{
    TraceSite mSite;
    const char* mText;
    Number Snapshot::*mCurrent;
    Number Snapshot::*mPeak;
    Number Snapshot::*mTotal;
};

Subject sSubjects[] = {
    {{kCategory, kLevel, false},
     "System Allocations (number): Current(",
     &Snapshot::mSystemAllocationCountCurrent,
     &Snapshot::mSystemAllocationCountPeak,
     &Snapshot::mSystemAllocationCountTotal},
    {{kCategory, kLevel, false},
     "System Allocations (size, in bytes): Current(",
     &Snapshot::mSystemAllocationBytesCurrent,
     &Snapshot::mSystemAllocationBytesPeak,
     &Snapshot::mSystemAllocationBytesTotal},
    {{kCategory, kLevel, false},
     "Small Block Allocations (number): Current(",
     &Snapshot::mSmallBlockCountCurrent,
     &Snapshot::mSmallBlockCountPeak,
     &Snapshot::mSmallBlockCountTotal},
    {{kCategory, kLevel, false},
     "Small Block Allocations (size, in bytes): Current(",
     &Snapshot::mSmallBlockBytesCurrent,
     &Snapshot::mSmallBlockBytesPeak,
     &Snapshot::mSmallBlockBytesTotal},
    {{kCategory, kLevel, false},
     "Master Block Allocations (number): Current(",
     &Snapshot::mMasterBlockCountCurrent,
     &Snapshot::mMasterBlockCountPeak,
     &Snapshot::mMasterBlockCountTotal},
    {{kCategory, kLevel, false},
     "Cluster Allocations (number): Current(",
     &Snapshot::mClusterCountCurrent,
     &Snapshot::mClusterCountPeak,
     &Snapshot::mClusterCountTotal},
};

TraceSite sRegionSite(kCategory, kLevel, false);
TraceSite sHeapSite(kCategory, kLevel, false);

void TraceSubject(Subject& ioSubject, const Snapshot& inSnapshot)
{
    if (ioSubject.mSite.IsEnabled()) {
        TraceLine(ioSubject.mSite) << ioSubject.mText << inSnapshot.*ioSubject.mCurrent << ") Peak("
                                   << inSnapshot.*ioSubject.mPeak << ") Total(" << inSnapshot.*ioSubject.mTotal
                                   << ")\n";
    }
}

const char* StateName(std::uint32_t inState)
{
    switch (inState) {
    case MemoryRegions::kCommitted: return "MEM_COMMIT";
    case MemoryRegions::kFree: return "MEM_FREE";
    default: return "MEM_RESERVE";
    }
}

// Address and size are printed as their low 32 bits, because readers of these lines expect that. The address is
// formatted for each region even if the trace is off.
void TraceRegion(std::uint64_t inAddress, const Region& inRegion)
{
    char address[16];
    std::snprintf(address, sizeof(address), "0x%08lx",
                  static_cast<unsigned long>(static_cast<std::uint32_t>(inAddress)));
    if (sRegionSite.IsEnabled()) {
        TraceLine(sRegionSite) << "-- One region address: " << address
                               << "; size: " << static_cast<unsigned int>(inRegion.mSize)
                               << "; state: " << static_cast<unsigned int>(inRegion.mState) << " = "
                               << StateName(inRegion.mState) << "\n";
    }
}

void TraceRegions(RegionSource& ioSource)
{
    Region region;
    std::uint64_t address = 0;
    while (ioSource.QueryRegion(address, region)) {
        TraceRegion(address, region);
        address += region.mSize;
        if (address == 0) {
            break; // the address wrapped around at the top of the address space
        }
    }
}

void TraceHeapCount(unsigned long inCount)
{
    if (sHeapSite.IsEnabled()) {
        TraceLine(sHeapSite) << "There are currently " << inCount << " heaps.\n";
    }
}

// Opens the walk on the first query, so nothing is opened if the allocator keeps no statistics.
class SystemRegions : public RegionSource
{
public:
    SystemRegions() = default;
    SystemRegions(const SystemRegions&) = delete;
    SystemRegions& operator=(const SystemRegions&) = delete;

    ~SystemRegions() override
    {
        if (mWalk != nullptr) {
            MemoryRegions::Platform::CloseWalk_Impl(mWalk);
        }
    }

    bool QueryRegion(std::uint64_t inAddress, Region& outRegion) override
    {
        if (mWalk == nullptr) {
            mWalk = MemoryRegions::Platform::OpenWalk_Impl();
        }
        return mWalk != nullptr && MemoryRegions::Platform::QueryRegion_Impl(*mWalk, inAddress, outRegion);
    }

    unsigned long HeapCount() override { return MemoryRegions::Platform::HeapCount_Impl(); }

private:
    MemoryRegions::Platform::Walk* mWalk = nullptr;
};

} // namespace

void TraceAllocatorStatisticsFrom(RegionSource& ioSource)
{
    const CriticalSectionLock lock(sStatisticsLock);
    Snapshot snapshot;
    if (!tvxcore::utility::SmallBlockAllocator::Metrics::GetSnapshot(snapshot)) {
        return;
    }
    for (Subject& subject : sSubjects) {
        TraceSubject(subject, snapshot);
    }
    TraceRegions(ioSource);
    TraceHeapCount(ioSource.HeapCount());
}

void TraceAllocatorStatistics()
{
    SystemRegions regions;
    TraceAllocatorStatisticsFrom(regions);
}

} // namespace ORL
