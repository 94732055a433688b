#include <SmallBlocks/Clusters.h>

#include <SmallBlocks/Counters.h>
#include <SmallBlocks/Guard.h>
#include <SmallBlocks/List.h>
#include <SmallBlocks/Pages.h>
#include <tvxcore/SmallBlockCache.h>

#include <cstring>
#include <new>

namespace tvxcore {
namespace utility {
namespace SmallBlocks {

namespace {

// The header at the start of the cluster's memory; the first master block is shorter by its size.
struct Cluster
{
    Cluster* mNext = nullptr;
    Cluster* mPrevious = nullptr;
    std::uint32_t mUsed = 0; // one bit for each master block
    Master mMasters[kMastersPerCluster];
};

constexpr std::size_t kHeadSize = (sizeof(Cluster) + 63) / 64 * 64;
constexpr std::uint32_t kAllUsed = (1u << kMastersPerCluster) - 1;

threads::CoreMutex sMutex;
List<Cluster> sWithSpace TVXCORE_GUARDED_BY(sMutex); // clusters with an unused master block
List<Cluster> sFull TVXCORE_GUARDED_BY(sMutex);
// One empty cluster is kept, so that a host whose usage fluctuates around a cluster boundary does not map and unmap it
// each time.
Cluster* sSpare TVXCORE_GUARDED_BY(sMutex) = nullptr;

Cluster& ClusterOf(const void* inAddress) noexcept
{
    return *reinterpret_cast<Cluster*>(reinterpret_cast<std::uintptr_t>(inAddress) & ~(kClusterSize - 1));
}

Cluster* MapCluster() noexcept
{
    void* const pages = TakePages(kClusterSize, kClusterSize);
    if (pages == nullptr) {
        return nullptr;
    }
    sCounters.mClusters.Add(1);
    return new (pages) Cluster;
}

void UnmapCluster(Cluster& inCluster) noexcept
{
    sCounters.mClusters.Remove(1);
    GivePages(&inCluster, kClusterSize);
}

Cluster* ClusterWithSpace() noexcept TVXCORE_REQUIRES(sMutex)
{
    if (sWithSpace.Front() == nullptr) {
        if (Cluster* const cluster = MapCluster()) {
            sWithSpace.PushFront(*cluster);
        }
    }
    return sWithSpace.Front();
}

} // namespace

void Master::Cut(char* inMemory, std::size_t inBytes, std::size_t inBlockSize) noexcept
{
    mFree = nullptr;
    mMemory = inMemory;
    mBlockSize = static_cast<std::uint32_t>(inBlockSize);
    mBlocks = static_cast<std::uint32_t>(inBytes / inBlockSize);
    mUncut = 0;
    mUsed = 0;
}

void* Master::Take() noexcept
{
    ++mUsed;
    void* const block = mFree;
    if (block == nullptr) {
        return mMemory + static_cast<std::size_t>(mUncut++) * mBlockSize;
    }
    std::memcpy(&mFree, block, sizeof(mFree));
    return block;
}

void Master::Give(void* inBlock) noexcept
{
    std::memcpy(inBlock, &mFree, sizeof(mFree));
    mFree = inBlock;
    --mUsed;
}

Master* NewMaster(std::size_t inClass) noexcept
{
    const Guard guard(sMutex);
    Cluster* const cluster = ClusterWithSpace();
    if (cluster == nullptr) {
        return nullptr;
    }
    if (cluster == sSpare) {
        sSpare = nullptr;
    }
    const auto index = static_cast<std::size_t>(__builtin_ctz(~cluster->mUsed));
    cluster->mUsed |= 1u << index;
    if (cluster->mUsed == kAllUsed) {
        sWithSpace.Remove(*cluster);
        sFull.PushFront(*cluster);
    }
    const std::size_t head = index == 0 ? kHeadSize : 0;
    char* const memory = reinterpret_cast<char*>(cluster) + index * kMasterSize;
    cluster->mMasters[index].Cut(memory + head, kMasterSize - head, kClassSizes[inClass]);
    sCounters.mMasters.Add(1);
    return &cluster->mMasters[index];
}

void DeleteMaster(Master& inMaster) noexcept
{
    const Guard guard(sMutex);
    Cluster& cluster = ClusterOf(&inMaster);
    if (cluster.mUsed == kAllUsed) {
        sFull.Remove(cluster);
        sWithSpace.PushFront(cluster);
    }
    cluster.mUsed &= ~(1u << (&inMaster - cluster.mMasters));
    sCounters.mMasters.Remove(1);
    if (cluster.mUsed != 0) {
        return;
    }
    if (sSpare == nullptr) {
        sSpare = &cluster;
        return;
    }
    sWithSpace.Remove(cluster);
    UnmapCluster(cluster);
}

Master& MasterOf(void* inBlock) noexcept
{
    Cluster& cluster = ClusterOf(inBlock);
    return cluster.mMasters[static_cast<std::size_t>(static_cast<char*>(inBlock) - reinterpret_cast<char*>(&cluster))
                            / kMasterSize];
}

void DeleteClusters() noexcept
{
    const Guard guard(sMutex);
    for (List<Cluster>* list : {&sWithSpace, &sFull}) {
        while (Cluster* const cluster = list->PopFront()) {
            sCounters.mMasters.Remove(static_cast<std::uint64_t>(__builtin_popcount(cluster->mUsed)));
            UnmapCluster(*cluster);
        }
    }
    sSpare = nullptr;
}

// The lock stays held until UnlockClusters.
void LockClusters() noexcept TVXCORE_UNCHECKED_LOCKING
{
    sMutex.lock();
}

void UnlockClusters() noexcept TVXCORE_UNCHECKED_LOCKING
{
    sMutex.unlock();
}

} // namespace SmallBlocks
} // namespace utility
} // namespace tvxcore
