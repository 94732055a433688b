#include <AllocationFaults.h>
#include <SmallBlocks/Clusters.h>
#include <SmallBlocks/Sanitizer.h>
#include <SmallBlocks/Stores.h>
#include <tvxcore/SmallBlockAllocator.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <thread>
#include <vector>

using namespace tvxcore::utility;
using SmallBlocks::kBlocksAreTheSystems;
using SmallBlocks::kLargestSmall;
using Snapshot = SmallBlockAllocator::Metrics::Snapshot;

namespace {

// A peak may be too high by this many bytes for each other thread.
constexpr std::uint64_t kMostPerThread = 16 * 1024 * 1024;

Snapshot Now()
{
    Snapshot snapshot;
    EXPECT_TRUE(SmallBlockAllocator::Metrics::GetSnapshot(snapshot));
    return snapshot;
}

class Blocks
{
public:
    explicit Blocks(std::size_t inSize) : mSize(inSize) {}
    ~Blocks() { Dispose(mBlocks.size()); }

    void Allocate(std::size_t inCount)
    {
        for (std::size_t i = 0; i < inCount; ++i) {
            mBlocks.push_back(SmallBlockAllocator::Allocate(mSize));
        }
    }

    void Dispose(std::size_t inCount)
    {
        for (std::size_t i = 0; i < inCount; ++i) {
            SmallBlockAllocator::Dispose(mBlocks.back(), mSize);
            mBlocks.pop_back();
        }
    }

private:
    const std::size_t mSize;
    std::vector<void*> mBlocks;
};

} // namespace

TEST(SmallBlockCounters, OneThread_CountsAndBytesAreExact)
{
    const Snapshot before = Now();
    Blocks blocks(100);
    blocks.Allocate(5000);
    const Snapshot full = Now();
    EXPECT_EQ(full.mSmallBlockCountCurrent - before.mSmallBlockCountCurrent, 5000u);
    EXPECT_EQ(full.mSmallBlockBytesCurrent - before.mSmallBlockBytesCurrent, 500000u);
    EXPECT_EQ(full.mSmallBlockCountTotal - before.mSmallBlockCountTotal, 5000u);
    EXPECT_EQ(full.mSmallBlockBytesTotal - before.mSmallBlockBytesTotal, 500000u);
    blocks.Dispose(2000);
    const Snapshot part = Now();
    EXPECT_EQ(part.mSmallBlockCountCurrent - before.mSmallBlockCountCurrent, 3000u);
    EXPECT_EQ(part.mSmallBlockBytesCurrent - before.mSmallBlockBytesCurrent, 300000u);
    EXPECT_EQ(part.mSmallBlockCountTotal, full.mSmallBlockCountTotal);
    EXPECT_EQ(part.mSmallBlockBytesTotal, full.mSmallBlockBytesTotal);
}

TEST(SmallBlockCounters, OneThread_PeakIsTheHighestValueAndNothingElse)
{
    const Snapshot before = Now();
    Blocks blocks(64);
    // Exceeds the old peak, whatever the current state of the process.
    const std::size_t past = static_cast<std::size_t>(before.mSmallBlockCountPeak + before.mSmallBlockBytesPeak / 64
                                                      - before.mSmallBlockCountCurrent + 1000);
    blocks.Allocate(past);
    const Snapshot top = Now();
    EXPECT_EQ(top.mSmallBlockCountPeak, top.mSmallBlockCountCurrent);
    EXPECT_EQ(top.mSmallBlockBytesPeak, top.mSmallBlockBytesCurrent);
    for (const std::size_t step : {std::size_t{1}, std::size_t{100}, std::size_t{1000}, past}) {
        blocks.Dispose(step);
        blocks.Allocate(step);
        const Snapshot again = Now();
        EXPECT_EQ(again.mSmallBlockCountPeak, top.mSmallBlockCountPeak) << step;
        EXPECT_EQ(again.mSmallBlockBytesPeak, top.mSmallBlockBytesPeak) << step;
    }
    blocks.Allocate(7);
    EXPECT_EQ(Now().mSmallBlockCountPeak, top.mSmallBlockCountPeak + 7);
    EXPECT_EQ(Now().mSmallBlockBytesPeak, top.mSmallBlockBytesPeak + 7 * 64);
    blocks.Dispose(past);
    EXPECT_EQ(Now().mSmallBlockCountPeak, top.mSmallBlockCountPeak + 7);
}

TEST(SmallBlockCounters, MoreAllocationsThanAPackedWordHolds_TotalsStayExact)
{
    const Snapshot before = Now();
    constexpr std::uint64_t kRounds = 300000;
    for (std::uint64_t i = 0; i < kRounds; ++i) {
        SmallBlockAllocator::Dispose(SmallBlockAllocator::Allocate(kLargestSmall), kLargestSmall);
    }
    const Snapshot after = Now();
    EXPECT_EQ(after.mSmallBlockCountTotal - before.mSmallBlockCountTotal, kRounds);
    EXPECT_EQ(after.mSmallBlockBytesTotal - before.mSmallBlockBytesTotal, kRounds * kLargestSmall);
    EXPECT_EQ(after.mSmallBlockCountCurrent, before.mSmallBlockCountCurrent);
    EXPECT_EQ(after.mSmallBlockBytesCurrent, before.mSmallBlockBytesCurrent);
}

TEST(SmallBlockCounters, LargeBlock_IsASystemAllocationAndNoSmallBlock)
{
    const Snapshot before = Now();
    void* const block = SmallBlockAllocator::Allocate(kLargestSmall + 1);
    const Snapshot with = Now();
    EXPECT_EQ(with.mSystemAllocationCountCurrent, before.mSystemAllocationCountCurrent + 1);
    EXPECT_EQ(with.mSystemAllocationBytesCurrent, before.mSystemAllocationBytesCurrent + kLargestSmall + 1);
    EXPECT_EQ(with.mSystemAllocationCountTotal, before.mSystemAllocationCountTotal + 1);
    EXPECT_EQ(with.mSystemAllocationBytesTotal, before.mSystemAllocationBytesTotal + kLargestSmall + 1);
    EXPECT_GE(with.mSystemAllocationBytesPeak, with.mSystemAllocationBytesCurrent);
    EXPECT_EQ(with.mSmallBlockCountTotal, before.mSmallBlockCountTotal);
    SmallBlockAllocator::Dispose(block, kLargestSmall + 1);
    const Snapshot after = Now();
    EXPECT_EQ(after.mSystemAllocationCountCurrent, before.mSystemAllocationCountCurrent);
    EXPECT_EQ(after.mSystemAllocationBytesCurrent, before.mSystemAllocationBytesCurrent);
    EXPECT_EQ(after.mSystemAllocationBytesTotal, with.mSystemAllocationBytesTotal);
}

TEST(SmallBlockCounters, FailedAllocation_CountsNothing)
{
    const Snapshot before = Now();
    {
        AllocationFaults::Plan plan;
        plan.mFailureCount = AllocationFaults::kAllFurther;
        plan.mOfThisThreadOnly = true;
        const AllocationFaults::Scope faults(plan);
        EXPECT_EQ(SmallBlockAllocator::Allocate(16), nullptr);
        EXPECT_EQ(SmallBlockAllocator::Allocate(1000000), nullptr);
    }
    const Snapshot after = Now();
    EXPECT_EQ(after.mSmallBlockCountTotal, before.mSmallBlockCountTotal);
    EXPECT_EQ(after.mSystemAllocationCountTotal, before.mSystemAllocationCountTotal);
}

TEST(SmallBlockCounters, TidesOfBlocks_MasterBlocksAndClustersComeAndGo)
{
    const Snapshot before = Now();
    // 64 MiB of one class: far more than caches and stores hold.
    constexpr std::size_t kSize = 4096;
    constexpr std::size_t kCount = 16384;
    Blocks blocks(kSize);
    blocks.Allocate(kCount);
    const Snapshot full = Now();
    blocks.Dispose(kCount);
    const Snapshot after = Now();
    if (kBlocksAreTheSystems) {
        EXPECT_EQ(full.mClusterCountTotal, 0u);
        EXPECT_EQ(full.mMasterBlockCountTotal, 0u);
        EXPECT_EQ(full.mSystemAllocationCountCurrent - before.mSystemAllocationCountCurrent, kCount);
        return;
    }
    constexpr std::uint64_t kMasters = kCount * kSize / SmallBlocks::kMasterSize;
    constexpr std::uint64_t kClusters = kCount * kSize / SmallBlocks::kClusterSize;
    EXPECT_GE(full.mMasterBlockCountCurrent, kMasters);
    EXPECT_GE(full.mClusterCountCurrent, kClusters);
    EXPECT_EQ(full.mMasterBlockCountPeak, std::max(before.mMasterBlockCountPeak, full.mMasterBlockCountCurrent));
    EXPECT_EQ(full.mClusterCountPeak, std::max(before.mClusterCountPeak, full.mClusterCountCurrent));
    EXPECT_GE(full.mSystemAllocationBytesCurrent, full.mClusterCountCurrent * SmallBlocks::kClusterSize);
    // The remainder is what a stack and a store keep, each block possibly in a different master block, and the spare
    // cluster.
    const std::uint64_t kept = SmallBlocks::StoreSize(31) + 2 * SmallBlocks::BatchSize(31);
    EXPECT_LE(after.mMasterBlockCountCurrent, before.mMasterBlockCountCurrent + kept);
    EXPECT_LT(after.mClusterCountCurrent, before.mClusterCountCurrent + kClusters / 4);
    EXPECT_GE(after.mMasterBlockCountTotal, full.mMasterBlockCountCurrent);
    EXPECT_EQ(after.mClusterCountPeak, full.mClusterCountPeak);
}

TEST(SmallBlockCounters, MemoryOfOneClass_ServesAnother)
{
    const Snapshot before = Now();
    for (int round = 0; round < 3; ++round) {
        for (const std::size_t size : {std::size_t{48}, std::size_t{512}, std::size_t{3000}, kLargestSmall}) {
            Blocks blocks(size);
            blocks.Allocate(32 * 1024 * 1024 / size);
        }
    }
    // Each of the twelve passes needs 32 clusters. If each pass reuses the memory of the previous one, the total stays
    // small.
    const Snapshot after = Now();
    EXPECT_LE(after.mClusterCountPeak, std::max(before.mClusterCountPeak, before.mClusterCountCurrent + 64));
    EXPECT_LT(after.mClusterCountCurrent, before.mClusterCountCurrent + 24);
}

TEST(SmallBlockCounters, BlocksMoveBetweenThreads_CountsAreExactOnceTheyRest)
{
    const Snapshot before = Now();
    constexpr std::size_t kCount = 30000;
    std::vector<void*> blocks(kCount);
    std::thread([&] {
        std::generate(blocks.begin(), blocks.end(), [] { return SmallBlockAllocator::Allocate(40); });
    }).join();
    const Snapshot full = Now();
    EXPECT_EQ(full.mSmallBlockCountCurrent - before.mSmallBlockCountCurrent, kCount);
    EXPECT_EQ(full.mSmallBlockBytesCurrent - before.mSmallBlockBytesCurrent, kCount * 40);
    std::thread([&] {
        for (void* const block : blocks) {
            SmallBlockAllocator::Dispose(block, 40);
        }
    }).join();
    const Snapshot after = Now();
    EXPECT_EQ(after.mSmallBlockCountCurrent, before.mSmallBlockCountCurrent);
    EXPECT_EQ(after.mSmallBlockBytesCurrent, before.mSmallBlockBytesCurrent);
    EXPECT_EQ(after.mSmallBlockCountTotal - before.mSmallBlockCountTotal, kCount);
}

TEST(SmallBlockCounters, ThreadThatHasEnded_LeavesItsTotals)
{
    // The first count is large enough to flush the packed word into the totals; the second stays within the word.
    for (const std::uint64_t rounds : {std::uint64_t{300000}, std::uint64_t{3}}) {
        const Snapshot before = Now();
        std::thread([rounds] {
            for (std::uint64_t i = 0; i < rounds; ++i) {
                SmallBlockAllocator::Dispose(SmallBlockAllocator::Allocate(kLargestSmall), kLargestSmall);
            }
        }).join();
        const Snapshot after = Now();
        EXPECT_EQ(after.mSmallBlockCountTotal - before.mSmallBlockCountTotal, rounds);
        EXPECT_EQ(after.mSmallBlockBytesTotal - before.mSmallBlockBytesTotal, rounds * kLargestSmall);
    }
}

TEST(SmallBlockCounters, ThreadDisposesOfLargerAndAllocatesSmaller_PeakKeepsItsBound)
{
    // Allocates up to the peak, so that no slack is left and each missing byte raises the peak.
    Blocks filling(kLargestSmall);
    filling.Allocate(
        static_cast<std::size_t>((Now().mSmallBlockBytesPeak - Now().mSmallBlockBytesCurrent) / kLargestSmall + 1));
    // Each exchange frees more bytes on the thread than it allocates, within one class and therefore within its stack.
    const Snapshot before = Now();
    constexpr int kRounds = 40000;
    constexpr std::size_t kSmaller = kLargestSmall - 2000;
    std::atomic<void*> larger{nullptr};
    std::atomic<void*> smaller{nullptr};
    const auto take = [](std::atomic<void*>& ioBlock) {
        void* block = nullptr;
        while ((block = ioBlock.exchange(nullptr)) == nullptr) {
            std::this_thread::yield();
        }
        return block;
    };
    std::thread other([&] {
        for (int i = 0; i < kRounds; ++i) {
            SmallBlockAllocator::Dispose(take(larger), kLargestSmall);
            smaller.store(SmallBlockAllocator::Allocate(kSmaller));
        }
    });
    for (int i = 0; i < kRounds; ++i) {
        larger.store(SmallBlockAllocator::Allocate(kLargestSmall));
        SmallBlockAllocator::Dispose(take(smaller), kSmaller);
    }
    // Measured before the other thread ends and returns its slack.
    const Snapshot after = Now();
    EXPECT_LT(after.mSmallBlockBytesPeak, before.mSmallBlockBytesPeak + 2 * kLargestSmall + kMostPerThread);
    other.join();
}

TEST(SmallBlockCounters, ProducerAndConsumer_PeakStaysNearWhatThereWas)
{
    const Snapshot before = Now();
    constexpr std::size_t kRing = 1024;
    constexpr std::size_t kCount = 500000;
    std::vector<std::atomic<void*>> ring(kRing);
    std::thread consumer([&] {
        for (std::size_t i = 0; i < kCount; ++i) {
            void* block = nullptr;
            while ((block = ring[i % kRing].exchange(nullptr)) == nullptr) {
                std::this_thread::yield();
            }
            SmallBlockAllocator::Dispose(block, kLargestSmall);
        }
    });
    for (std::size_t i = 0; i < kCount; ++i) {
        while (ring[i % kRing].load() != nullptr) {
            std::this_thread::yield();
        }
        ring[i % kRing].store(SmallBlockAllocator::Allocate(kLargestSmall));
    }
    consumer.join();
    const Snapshot after = Now();
    EXPECT_EQ(after.mSmallBlockCountCurrent, before.mSmallBlockCountCurrent);
    const std::uint64_t highest = before.mSmallBlockCountPeak + kRing + 2;
    EXPECT_LT(after.mSmallBlockCountPeak, highest + 16384);
    EXPECT_LT(after.mSmallBlockBytesPeak, before.mSmallBlockBytesPeak + (kRing + 2) * kLargestSmall + kMostPerThread);
}

TEST(SmallBlockCounters, SnapshotsUnderLoad_CurrentIsNeverAbovePeakNorTotal)
{
    std::atomic<bool> isOver{false};
    std::vector<std::thread> threads;
    for (std::size_t thread = 0; thread < 3; ++thread) {
        threads.emplace_back([&isOver, thread] {
            std::vector<void*> blocks;
            while (!isOver.load()) {
                for (std::size_t i = 0; i < 500; ++i) {
                    blocks.push_back(SmallBlockAllocator::Allocate(16 + 100 * thread));
                }
                for (void* const block : blocks) {
                    SmallBlockAllocator::Dispose(block, 16 + 100 * thread);
                }
                blocks.clear();
            }
        });
    }
    Snapshot last = Now();
    for (int i = 0; i < 20000; ++i) {
        const Snapshot now = Now();
        ASSERT_LE(now.mSmallBlockCountCurrent, now.mSmallBlockCountPeak);
        ASSERT_LE(now.mSmallBlockBytesCurrent, now.mSmallBlockBytesPeak);
        ASSERT_LE(now.mSmallBlockCountPeak, now.mSmallBlockCountTotal);
        ASSERT_LE(now.mSystemAllocationCountCurrent, now.mSystemAllocationCountPeak);
        ASSERT_GE(now.mSmallBlockCountTotal, last.mSmallBlockCountTotal);
        ASSERT_GE(now.mSmallBlockCountPeak, last.mSmallBlockCountPeak);
        // Allows for three threads with 500 blocks each, plus the inaccuracy of a reading.
        ASSERT_LT(now.mSmallBlockCountCurrent, last.mSmallBlockCountCurrent + 100000);
        last = now;
    }
    isOver.store(true);
    for (std::thread& thread : threads) {
        thread.join();
    }
}

TEST(SmallBlockCounters, NoMetrics_SnapshotIsFalseAndUntouched)
{
    Snapshot snapshot{};
    snapshot.mClusterCountTotal = 4711;
    {
        const AllocationFaults::NoMetricsScope noMetrics;
        EXPECT_FALSE(SmallBlockAllocator::Metrics::GetSnapshot(snapshot));
    }
    EXPECT_EQ(snapshot.mClusterCountTotal, 4711u);
    EXPECT_TRUE(SmallBlockAllocator::Metrics::GetSnapshot(snapshot));
}
