// The free blocks that all threads share: one store for each size class.
//
// A store holds pointers to free blocks, ready to be copied to a thread's stack: moving a batch from one thread to
// another touches two short arrays and none of the blocks. What a store has no room for goes back to the master blocks,
// and an empty master block goes back to its cluster.
#pragma once

#include <SmallBlocks/Clusters.h>
#include <tvxcore/SmallBlockCache.h>

#include <algorithm>
#include <cstddef>

namespace tvxcore {
namespace utility {
namespace SmallBlocks {

/// Blocks that move between a thread's stack and a store at once: 32 KiB worth, so that neither a lock for each block
/// nor a thread's hoard gets expensive.
constexpr std::size_t BatchSize(std::size_t inClass) noexcept
{
    return std::clamp<std::size_t>(32 * 1024 / kClassSizes[inClass], 4, 256);
}

/// Blocks that a store keeps ready: 1 MiB worth.
constexpr std::size_t StoreSize(std::size_t inClass) noexcept
{
    return std::clamp<std::size_t>(1024 * 1024 / kClassSizes[inClass], 2 * BatchSize(inClass), 2048);
}

/// Copies up to inCount free blocks of a class to outBlocks and tells how many; 0 when memory is out.
std::size_t TakeFromStore(std::size_t inClass, void** outBlocks, std::size_t inCount) noexcept;

/// Takes free blocks of a class back.
void GiveToStore(std::size_t inClass, void* const* inBlocks, std::size_t inCount) noexcept;

/// Forgets all blocks. For the unloading of the library, when their memory goes.
void ForgetStores() noexcept;

/// Hold all stores' locks across a fork.
void LockStores() noexcept;
void UnlockStores() noexcept;

} // namespace SmallBlocks
} // namespace utility
} // namespace tvxcore
