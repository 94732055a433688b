// The free blocks that all threads share: one store for each size class.
//
// A store holds pointers to free blocks, ready to be copied to a thread's stack: moving a batch from one thread to
// another touches two short arrays and none of the blocks. Blocks that exceed the capacity of a store return to their
// master blocks, and an unused master block returns to its cluster.
#pragma once

#include <SmallBlocks/Clusters.h>
#include <tvxcore/SmallBlockCache.h>

#include <algorithm>
#include <cstddef>

namespace tvxcore {
namespace utility {
namespace SmallBlocks {

/// Returns the number of blocks that move between a thread's stack and a store at once: 32 KiB worth. The number
/// balances lock operations per block against memory held by idle threads.
constexpr std::size_t BatchSize(std::size_t inClass) noexcept
{
    return std::clamp<std::size_t>(32 * 1024 / kClassSizes[inClass], 4, 256);
}

/// Returns the capacity of a store in blocks: 1 MiB worth.
constexpr std::size_t StoreSize(std::size_t inClass) noexcept
{
    return std::clamp<std::size_t>(1024 * 1024 / kClassSizes[inClass], 2 * BatchSize(inClass), 2048);
}

/// Copies up to inCount free blocks of a class to outBlocks and returns their number; 0 if out of memory.
std::size_t TakeFromStore(std::size_t inClass, void** outBlocks, std::size_t inCount) noexcept;

/// Returns free blocks of a class to their store.
void GiveToStore(std::size_t inClass, void* const* inBlocks, std::size_t inCount) noexcept;

/// Drops all blocks without freeing them. Used on unload, when their memory is unmapped.
void ForgetStores() noexcept;

/// Lock and unlock all stores around a fork.
void LockStores() noexcept;
void UnlockStores() noexcept;

} // namespace SmallBlocks
} // namespace utility
} // namespace tvxcore
