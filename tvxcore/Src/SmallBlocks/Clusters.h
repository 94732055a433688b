// Clusters of 1 MiB from the system, cut into master blocks of 64 KiB, each of which holds the blocks of one class.
//
// A cluster begins at a multiple of its size, so the master block of any block follows from its address. Only the slow
// ways ask for it.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tvxcore {
namespace utility {
namespace SmallBlocks {

inline constexpr std::size_t kClusterSize = 1024 * 1024;
inline constexpr std::size_t kMasterSize = 64 * 1024;
inline constexpr std::size_t kMastersPerCluster = kClusterSize / kMasterSize;

/// One master block: its blocks that are free and not in a store or a cache. The store of its class guards it.
class Master
{
public:
    /// Makes all blocks free. Their memory is not touched until they are handed out.
    void Cut(char* inMemory, std::size_t inBytes, std::size_t inBlockSize) noexcept;

    /// A free block; there must be one.
    void* Take() noexcept;
    void Give(void* inBlock) noexcept;

    bool HasFreeBlocks() const noexcept { return mFree != nullptr || mUncut != mBlocks; }
    bool IsUnused() const noexcept { return mUsed == 0; }

    Master* mNext;
    Master* mPrevious;

private:
    void* mFree; // blocks given back, linked through their first bytes
    char* mMemory;
    std::uint32_t mBlockSize;
    std::uint32_t mBlocks; // how many there are
    std::uint32_t mUncut;  // from here on they were never handed out
    std::uint32_t mUsed;
};

/// A master block cut for a class, or null when memory is out.
Master* NewMaster(std::size_t inClass) noexcept;

/// Gives an unused master block back.
void DeleteMaster(Master& inMaster) noexcept;

Master& MasterOf(void* inBlock) noexcept;

/// Gives all clusters back to the system, whatever they hold. For the unloading of the library.
void DeleteClusters() noexcept;

/// Hold the clusters' lock across a fork.
void LockClusters() noexcept;
void UnlockClusters() noexcept;

} // namespace SmallBlocks
} // namespace utility
} // namespace tvxcore
