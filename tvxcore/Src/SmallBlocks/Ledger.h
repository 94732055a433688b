// The counters of the small blocks. Each thread keeps its own counters; a snapshot sums them.
//
// For blocks and for bytes:
//
//   current = peak - unclaimed - the sum of all threads' quotas
//
// A thread's quota is the amount that it may allocate before the peak must be raised. Freeing adds to the quota,
// allocating uses it. A thread that runs out of quota claims unclaimed quota from the ledger; if the ledger has none,
// the thread raises the peak by exactly the missing amount. A thread that has accumulated much quota, since it frees
// what others allocate, returns it to the ledger. Quota is never negative, so no current value exceeds the peak. A
// single thread raises the peak only if nothing is unclaimed, so its peak is exact.
#pragma once

#include <SmallBlocks/ThreadCache.h>
#include <tvxcore/SmallBlockAllocator.h>

#include <cstddef>
#include <cstdint>

namespace tvxcore {
namespace utility {
namespace SmallBlocks {

/// Above this much quota, the slow path returns quota to the ledger.
inline constexpr std::int64_t kMaxQuotaCount = 1024;
inline constexpr std::int64_t kMaxQuotaBytes = 1024 * 1024;

/// Registers a cache, which counts from now on, and enables its fast paths.
void EnterCache(ThreadCache& ioCache) noexcept;

/// Moves the counts of the cache to the ledger, unregisters the cache and disables its fast paths.
void LeaveCache(ThreadCache& ioCache) noexcept;

/// Registers a cache that counts without fast paths.
void EnterSharedCache(ThreadCache& ioCache) noexcept;

/// Ensures that the cache has quota for an allocation of inSize bytes.
void EnsureQuotaFor(ThreadCache& ioCache, std::size_t inSize) noexcept;

/// Return excess quota, or all of it, to the ledger.
void ReturnExcessQuota(ThreadCache& ioCache) noexcept;
void ReturnAllQuota(ThreadCache& ioCache) noexcept;

/// Fills in the counters of the small blocks.
void ReadSmallBlockCounters(SmallBlockAllocator::Metrics::Snapshot& outSnapshot) noexcept;

enum class FastAllocation { kOff, kOn };

/// Enables or disables the fast path of Allocate in all caches, including later ones.
void SetFastAllocation(FastAllocation inState) noexcept;

/// Returns the first registered cache, or null. Used when the library is unloaded and no thread uses the caches.
ThreadCache* FirstCache() noexcept;

/// Lock and unlock the ledger around a fork.
void LockLedger() noexcept;
void UnlockLedger() noexcept;

} // namespace SmallBlocks
} // namespace utility
} // namespace tvxcore
