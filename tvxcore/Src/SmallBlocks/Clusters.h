// Clusters of 1 MiB from the system, cut into master blocks of 64 KiB, each of which holds the blocks of one class.
//
// A cluster is aligned to its size, so the master block of a block follows from its address. Only the slow paths look
// it up.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tvxcore {
namespace utility {
namespace SmallBlocks {

inline constexpr std::size_t kClusterSize = 1024 * 1024;
inline constexpr std::size_t kMasterSize = 64 * 1024;
inline constexpr std::size_t kMastersPerCluster = kClusterSize / kMasterSize;

/// A master block and those of its free blocks that no store or cache holds. Guarded by the lock of its class's
/// store.
class Master
{
public:
    /// Makes all blocks free. Does not touch their memory.
    void Cut(char* inMemory, std::size_t inBytes, std::size_t inBlockSize) noexcept;

    /// Returns a free block. At least one block must be free.
    void* Take() noexcept;
    void Give(void* inBlock) noexcept;

    bool HasFreeBlocks() const noexcept { return mFree != nullptr || mUncut != mBlocks; }
    bool IsUnused() const noexcept { return mUsed == 0; }

    Master* mNext;
    Master* mPrevious;

private:
    void* mFree; // freed blocks, linked through their first bytes
    char* mMemory;
    std::uint32_t mBlockSize;
    std::uint32_t mBlocks; // number of blocks
    std::uint32_t mUncut;  // index of the first block that was never allocated
    std::uint32_t mUsed;
};

/// Returns a master block for a class, or null if out of memory.
Master* NewMaster(std::size_t inClass) noexcept;

/// Returns an unused master block to its cluster.
void DeleteMaster(Master& inMaster) noexcept;

Master& MasterOf(void* inBlock) noexcept;

/// Unmaps all clusters, even if they contain allocated blocks. Used when the library is unloaded.
void DeleteClusters() noexcept;

/// Lock and unlock the clusters around a fork.
void LockClusters() noexcept;
void UnlockClusters() noexcept;

} // namespace SmallBlocks
} // namespace utility
} // namespace tvxcore
