// The small blocks' counters, kept by each thread for itself and summed for a snapshot.
//
// For blocks and for bytes alike:
//
//   current = peak - unclaimed - the sum of all threads' rooms
//
// A thread's room is what it may allocate before the peak has to move. Disposing makes room, allocating uses it up. A
// thread that runs out of room claims some that others have left with the ledger; when there is none, it raises the
// peak by exactly what it lacks. A thread that has gathered much room, since it disposes of what others allocate,
// leaves it with the ledger. No room is ever negative, so no current value exceeds the peak. One thread alone raises
// the peak only when nothing is unclaimed, so its peak is exact.
#pragma once

#include <SmallBlocks/ThreadCache.h>
#include <tvxcore/SmallBlockAllocator.h>

#include <cstddef>
#include <cstdint>

namespace tvxcore {
namespace utility {
namespace SmallBlocks {

/// A thread keeps at most this much room when its stacks overflow.
inline constexpr std::int64_t kMostRoomCount = 1024;
inline constexpr std::int64_t kMostRoomBytes = 1024 * 1024;

/// Enters a cache that counts from now on, and opens its fast ways.
void EnterCache(ThreadCache& ioCache) noexcept;

/// Takes over what the cache has counted, and closes it.
void LeaveCache(ThreadCache& ioCache) noexcept;

/// Enters a cache that counts without fast ways.
void EnterSharedCache(ThreadCache& ioCache) noexcept;

/// Makes sure that the cache may count an allocation of inSize bytes.
void MakeRoomFor(ThreadCache& ioCache, std::size_t inSize) noexcept;

/// Leaves what is too much room with the ledger, or all of it.
void LeaveRoom(ThreadCache& ioCache) noexcept;
void LeaveAllRoom(ThreadCache& ioCache) noexcept;

/// Fills the small blocks' part.
void ReadSmallBlockCounters(SmallBlockAllocator::Metrics::Snapshot& outSnapshot) noexcept;

/// Opens or closes the fast way of Allocate in all caches, those to come included.
void OpenFastAllocation(bool inOpen) noexcept;

/// The first of the caches entered, or null. For the unloading of the library, when no thread uses them.
ThreadCache* FirstCache() noexcept;

/// Hold the ledger's lock across a fork.
void LockLedger() noexcept;
void UnlockLedger() noexcept;

} // namespace SmallBlocks
} // namespace utility
} // namespace tvxcore
