#include <tvxcore/SmallBlockAllocator.h>

#include <AllocationFaults.h>
#include <CorePlatform/Thread.h>
#include <SmallBlocks/CachePool.h>
#include <SmallBlocks/Counters.h>
#include <SmallBlocks/CurrentCache.h>
#include <SmallBlocks/LastBlocks.h>
#include <SmallBlocks/Ledger.h>
#include <SmallBlocks/Sanitizer.h>

#include <cstdlib>

namespace tvxcore {
namespace utility {

namespace SmallBlocks {

namespace {

// No block can be that large, and some C libraries abort on such a request.
constexpr std::size_t kLargestBlock = std::size_t{1} << 40;

void* AllocateFromSystem(std::size_t inSize) noexcept
{
    void* const block = inSize < kLargestBlock ? std::malloc(inSize != 0 ? inSize : 1) : nullptr;
    if (block != nullptr) {
        CountSystemAllocation(inSize);
    }
    return block;
}

void DisposeToSystem(void* inBlock, std::size_t inSize) noexcept
{
    CountSystemRelease(inSize);
    std::free(inBlock);
}

void* AllocateSmall(std::size_t inSize) noexcept
{
    if (ThreadCache* const cache = CacheOfThisThread()) {
        return cache->Take(inSize);
    }
    if (!kBlocksAreTheSystems) {
        return SharedCacheUse()->Take(inSize);
    }
    void* const block = AllocateFromSystem(inSize);
    if (block != nullptr) {
        SharedCacheUse()->CountTaken(inSize);
    }
    return block;
}

void DisposeSmall(void* inBlock, std::size_t inSize) noexcept
{
    if (ThreadCache* const cache = CacheOfThisThread()) {
        cache->Give(inBlock, inSize);
    } else if (!kBlocksAreTheSystems) {
        SharedCacheUse()->Give(inBlock, inSize);
    } else {
        DisposeToSystem(inBlock, inSize);
        SharedCacheUse()->CountGiven(inSize);
    }
}

} // namespace

CacheHead sNewThreadCache;
CacheHead sEndedThreadCache;

#if TVXCORE_HAS_SHARED_THREAD_LOCALS
__attribute__((tls_model("initial-exec"))) __thread CacheHead* sThreadCache = &sNewThreadCache;
#endif

void* AllocateSlowly(std::size_t inSize) noexcept
{
    if (AllocationFaults::Refuses(AllocationFaults::kBlocks)) {
        return nullptr;
    }
    if (threads::Platform::ProcessIsEnding_Impl()) {
        return inSize < kLargestBlock ? TakeLastBlock(inSize) : nullptr;
    }
    return inSize <= kLargestSmall ? AllocateSmall(inSize) : AllocateFromSystem(inSize);
}

void DisposeSlowly(void* inBlock, std::size_t inSize) noexcept
{
    if (threads::Platform::ProcessIsEnding_Impl()) {
        return; // the system reclaims the memory
    }
    if (inSize <= kLargestSmall) {
        DisposeSmall(inBlock, inSize);
    } else {
        DisposeToSystem(inBlock, inSize);
    }
}

} // namespace SmallBlocks

#if !TVXCORE_HAS_SHARED_THREAD_LOCALS

void* SmallBlockAllocator::Allocate(std::size_t inSize) noexcept
{
    void* const block = SmallBlocks::TakeFromCache(*SmallBlocks::GetCurrentCache(), inSize);
    return block != nullptr ? block : SmallBlocks::AllocateSlowly(inSize);
}

void SmallBlockAllocator::Dispose(void* inBlock, std::size_t inSize) noexcept
{
    if (inBlock != nullptr && !SmallBlocks::GiveToCache(*SmallBlocks::GetCurrentCache(), inBlock, inSize)) {
        SmallBlocks::DisposeSlowly(inBlock, inSize);
    }
}

#endif

bool SmallBlockAllocator::Metrics::GetSnapshot(Snapshot& outSnapshot)
{
    using SmallBlocks::sCounters;
    if (!AllocationFaults::HasMetrics()) {
        return false;
    }
    sCounters.mSystemCount.Read(outSnapshot.mSystemAllocationCountCurrent, outSnapshot.mSystemAllocationCountPeak,
                                outSnapshot.mSystemAllocationCountTotal);
    sCounters.mSystemBytes.Read(outSnapshot.mSystemAllocationBytesCurrent, outSnapshot.mSystemAllocationBytesPeak,
                                outSnapshot.mSystemAllocationBytesTotal);
    SmallBlocks::ReadSmallBlockCounters(outSnapshot);
    sCounters.mMasters.Read(outSnapshot.mMasterBlockCountCurrent, outSnapshot.mMasterBlockCountPeak,
                            outSnapshot.mMasterBlockCountTotal);
    sCounters.mClusters.Read(outSnapshot.mClusterCountCurrent, outSnapshot.mClusterCountPeak,
                             outSnapshot.mClusterCountTotal);
    return true;
}

} // namespace utility
} // namespace tvxcore
