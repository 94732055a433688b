#include <AllocationFaults.h>
#include <Memory/AllocatorStatistics.h>
#include <ORLAllocator.h>
#include <tvxcore/Executor.h>
#include <tvxcore/SmallBlockAllocator.h>
#include <tvxcore/Trace.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

using namespace ORL;
using MemoryRegions::Region;
using Snapshot = tvxcore::utility::SmallBlockAllocator::Metrics::Snapshot;

namespace {

std::mutex sLinesMutex;
std::vector<std::string> sLines;

void Record(const unsigned char* inText)
{
    const std::lock_guard<std::mutex> lock(sLinesMutex);
    sLines.emplace_back(reinterpret_cast<const char*>(inText));
}

std::string Prefix()
{
    return "<" + std::to_string(tvxcore::threads::GetCurrentThreadID()) + "> <ORL.Allocator> <1> ";
}

/// Reports the regions in a list, adjacent to each other from address 0.
class ListedRegions : public RegionSource
{
public:
    explicit ListedRegions(std::vector<Region> inRegions, unsigned long inHeaps = 3)
        : mRegions(std::move(inRegions)), mHeaps(inHeaps)
    {
    }

    bool QueryRegion(std::uint64_t inAddress, Region& outRegion) override
    {
        mAsked.push_back(inAddress);
        const std::size_t index = mAsked.size() - 1;
        if (index >= mRegions.size()) {
            return false;
        }
        outRegion = mRegions[index];
        return true;
    }

    unsigned long HeapCount() override
    {
        ++mHeapCounts;
        return mHeaps;
    }

    std::vector<std::uint64_t> mAsked;
    int mHeapCounts = 0;

private:
    const std::vector<Region> mRegions;
    const unsigned long mHeaps;
};

const std::vector<Region> kThreeRegions = {{0x10000, 65536}, {0x2000, 4096}, {0x1000, 8192}};

// Enables the trace category and collects the trace in sLines.
class AllocatorStatistics : public testing::Test
{
protected:
    AllocatorStatistics()
    {
        tvxcore::debug::ShutdownTraceManager();
        tvxcore::debug::InstallTraceSink(&Record);
        tvxcore::debug::SetTraceLevel("ORL.Allocator", 1);
        TakeLines();
    }

    ~AllocatorStatistics() override { tvxcore::debug::ShutdownTraceManager(); }

    static std::vector<std::string> TakeLines()
    {
        const std::lock_guard<std::mutex> lock(sLinesMutex);
        return std::exchange(sLines, {});
    }
};

std::string Line(const char* inSubject, unsigned __int64 inCurrent, unsigned __int64 inPeak, unsigned __int64 inTotal)
{
    return Prefix() + inSubject + ": Current(" + std::to_string(inCurrent) + ") Peak(" + std::to_string(inPeak)
           + ") Total(" + std::to_string(inTotal) + ")\n";
}

} // namespace

TEST_F(AllocatorStatistics, SixSubjects_InTheirOrderWithCurrentPeakAndTotal)
{
    ListedRegions regions({});
    Snapshot now;
    ASSERT_TRUE(tvxcore::utility::SmallBlockAllocator::Metrics::GetSnapshot(now));
    TraceAllocatorStatisticsFrom(regions);
    const std::vector<std::string> lines = TakeLines();
    ASSERT_EQ(lines.size(), 7u);
    EXPECT_EQ(lines[0], Line("System Allocations (number)", now.mSystemAllocationCountCurrent,
                             now.mSystemAllocationCountPeak, now.mSystemAllocationCountTotal));
    EXPECT_EQ(lines[1], Line("System Allocations (size, in bytes)", now.mSystemAllocationBytesCurrent,
                             now.mSystemAllocationBytesPeak, now.mSystemAllocationBytesTotal));
    EXPECT_EQ(lines[2], Line("Small Block Allocations (number)", now.mSmallBlockCountCurrent, now.mSmallBlockCountPeak,
                             now.mSmallBlockCountTotal));
    EXPECT_EQ(lines[3], Line("Small Block Allocations (size, in bytes)", now.mSmallBlockBytesCurrent,
                             now.mSmallBlockBytesPeak, now.mSmallBlockBytesTotal));
    EXPECT_EQ(lines[4], Line("Master Block Allocations (number)", now.mMasterBlockCountCurrent,
                             now.mMasterBlockCountPeak, now.mMasterBlockCountTotal));
    EXPECT_EQ(lines[5], Line("Cluster Allocations (number)", now.mClusterCountCurrent, now.mClusterCountPeak,
                             now.mClusterCountTotal));
}

TEST_F(AllocatorStatistics, Regions_EachHasItsLineAndItsStatesName)
{
    ListedRegions regions({{0x10000, 65536}, {0x2000, 4096}, {0x1000, 8192}, {0x3000, 17}});
    TraceAllocatorStatisticsFrom(regions);
    const std::vector<std::string> lines = TakeLines();
    ASSERT_EQ(lines.size(), 11u);
    EXPECT_EQ(lines[6], Prefix() + "-- One region address: 0x00000000; size: 65536; state: 65536 = MEM_FREE\n");
    EXPECT_EQ(lines[7], Prefix() + "-- One region address: 0x00010000; size: 8192; state: 4096 = MEM_COMMIT\n");
    EXPECT_EQ(lines[8], Prefix() + "-- One region address: 0x00012000; size: 4096; state: 8192 = MEM_RESERVE\n");
    EXPECT_EQ(lines[9], Prefix() + "-- One region address: 0x00013000; size: 12288; state: 17 = MEM_RESERVE\n");
    EXPECT_EQ(lines[10], Prefix() + "There are currently 3 heaps.\n");
}

TEST_F(AllocatorStatistics, AddressAndSizeAboveFourGiB_OnlyTheLowHalfIsShown)
{
    ListedRegions regions({{0x7F0012345000, 65536}, {0x500001000, 4096}});
    TraceAllocatorStatisticsFrom(regions);
    const std::vector<std::string> lines = TakeLines();
    ASSERT_EQ(lines.size(), 9u);
    EXPECT_EQ(lines[6], Prefix() + "-- One region address: 0x00000000; size: 305418240; state: 65536 = MEM_FREE\n");
    EXPECT_EQ(lines[7], Prefix() + "-- One region address: 0x12345000; size: 4096; state: 4096 = MEM_COMMIT\n");
}

TEST_F(AllocatorStatistics, WalkAcrossTheTopOfTheAddressSpace_Stops)
{
    ListedRegions regions({{0x1000, 4096}, {0xFFFFFFFFFFFFF000, 65536}, {0x1000, 4096}});
    TraceAllocatorStatisticsFrom(regions);
    EXPECT_EQ(regions.mAsked, (std::vector<std::uint64_t>{0, 0x1000}));
    EXPECT_EQ(regions.mHeapCounts, 1);
    EXPECT_EQ(TakeLines().size(), 9u);
}

TEST_F(AllocatorStatistics, FirstQueryTellsNothing_HeapsAreCountedAllTheSame)
{
    ListedRegions regions({});
    TraceAllocatorStatisticsFrom(regions);
    EXPECT_EQ(regions.mAsked, std::vector<std::uint64_t>{0});
    EXPECT_EQ(TakeLines().back(), Prefix() + "There are currently 3 heaps.\n");
}

TEST_F(AllocatorStatistics, CategoryOff_WalksAndCountsAndWritesNothing)
{
    tvxcore::debug::SetTraceLevel("ORL.Allocator", tvxcore::debug::kTraceOff);
    tvxcore::debug::SetTraceLevelOfAll(5);
    ListedRegions regions(kThreeRegions);
    TraceAllocatorStatisticsFrom(regions);
    EXPECT_EQ(regions.mAsked, (std::vector<std::uint64_t>{0, 0x10000, 0x12000, 0x13000}));
    EXPECT_EQ(regions.mHeapCounts, 1);
    EXPECT_TRUE(TakeLines().empty());
}

TEST_F(AllocatorStatistics, SnapshotIsFalse_NothingIsTracedAndTheWalkDoesNotHappen)
{
    const tvxcore::utility::AllocationFaults::NoMetricsScope noMetrics;
    ListedRegions regions(kThreeRegions);
    TraceAllocatorStatisticsFrom(regions);
    EXPECT_TRUE(regions.mAsked.empty());
    EXPECT_EQ(regions.mHeapCounts, 0);
    EXPECT_TRUE(TakeLines().empty());
    TraceAllocatorStatistics();
    EXPECT_TRUE(TakeLines().empty());
}

TEST_F(AllocatorStatistics, SwitchedOnBetweenTwoCalls_TakesEffectAtTheNext)
{
    ListedRegions first({});
    tvxcore::debug::SetTraceLevel("ORL.Allocator", tvxcore::debug::kTraceOff);
    TraceAllocatorStatisticsFrom(first);
    EXPECT_TRUE(TakeLines().empty());
    tvxcore::debug::SetTraceLevel("ORL.Allocator", 1);
    ListedRegions second({});
    TraceAllocatorStatisticsFrom(second);
    EXPECT_EQ(TakeLines().size(), 7u);
}

TEST_F(AllocatorStatistics, OfTheSystem_RegionsFollowEachOtherFromZero)
{
    TraceAllocatorStatistics();
    const std::vector<std::string> lines = TakeLines();
    ASSERT_GT(lines.size(), 20u);
    std::uint32_t next = 0;
    for (std::size_t i = 6; i + 1 < lines.size(); ++i) {
        const std::string text = lines[i].substr(Prefix().size());
        unsigned int address = 0;
        unsigned int size = 0;
        char state[40] = "";
        ASSERT_EQ(std::sscanf(text.c_str(), "-- One region address: 0x%8x; size: %u; state: %39[^\n]", &address, &size,
                              state),
                  3)
            << lines[i];
        EXPECT_EQ(address, next) << lines[i];
        next += size;
        const std::string name = state;
        EXPECT_TRUE(name == "4096 = MEM_COMMIT" || name == "8192 = MEM_RESERVE" || name == "65536 = MEM_FREE") << name;
    }
    unsigned int heaps = 0;
    EXPECT_EQ(std::sscanf(lines.back().c_str() + Prefix().size(), "There are currently %u heaps.", &heaps), 1);
    EXPECT_GE(heaps, 1u);
}

// The second thread starts during the first one's walk and gets ample time to write.
TEST_F(AllocatorStatistics, ThreadThatComesDuringAWalk_WritesAfterIt)
{
    struct HeldUp : ListedRegions
    {
        HeldUp() : ListedRegions(kThreeRegions) {}
        bool QueryRegion(std::uint64_t inAddress, Region& outRegion) override
        {
            if (!mOther.joinable()) {
                mOther = std::thread([this] {
                    ListedRegions regions(kThreeRegions);
                    mHasCome = true;
                    TraceAllocatorStatisticsFrom(regions);
                    mIsThrough = true;
                });
            }
            for (int i = 0; !mHasCome || (i < 5000 && !mIsThrough); i += mHasCome) {
                std::this_thread::yield();
            }
            return ListedRegions::QueryRegion(inAddress, outRegion);
        }
        std::thread mOther;
        std::atomic<bool> mHasCome{false};
        std::atomic<bool> mIsThrough{false};
    } regions;
    const std::string own = Prefix();
    TraceAllocatorStatisticsFrom(regions);
    regions.mOther.join();
    const std::vector<std::string> lines = TakeLines();
    ASSERT_EQ(lines.size(), 2u * 10u);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        EXPECT_EQ(i < 10, lines[i].compare(0, own.size(), own) == 0) << i << ": " << lines[i];
    }
}

TEST_F(AllocatorStatistics, TwoThreadsAtOnce_LinesDoNotMingle)
{
    std::vector<std::thread> threads;
    for (int i = 0; i < 2; ++i) {
        threads.emplace_back([] {
            for (int round = 0; round < 20; ++round) {
                ListedRegions regions(kThreeRegions);
                TraceAllocatorStatisticsFrom(regions);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    const std::vector<std::string> lines = TakeLines();
    ASSERT_EQ(lines.size(), 40u * 10u);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const std::size_t first = i / 10 * 10;
        EXPECT_EQ(lines[i].substr(0, lines[i].find('>')), lines[first].substr(0, lines[first].find('>'))) << i;
    }
}
