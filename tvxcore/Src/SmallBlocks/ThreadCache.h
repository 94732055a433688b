// A thread's cache of free blocks.
#pragma once

#include <SmallBlocks/Stores.h>
#include <tvxcore/SmallBlockCache.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

namespace tvxcore {
namespace utility {
namespace SmallBlocks {

/// Returns the capacity of a stack in blocks: two batches.
constexpr std::size_t StackSize(std::size_t inClass) noexcept
{
    return 2 * BatchSize(inClass);
}

/// Returns the number of slots of a class's stack, including the null below it, rounded up to an odd number of cache
/// lines. Otherwise stacks of one size would be a power of two apart and compete for the same cache sets.
constexpr std::size_t SlotsOfClass(std::size_t inClass) noexcept
{
    const std::size_t lines = (1 + StackSize(inClass) + 7) / 8;
    return 8 * (lines | 1);
}

constexpr std::size_t SlotsBeforeClass(std::size_t inClass) noexcept
{
    std::size_t slots = 0;
    for (std::size_t i = 0; i < inClass; ++i) {
        slots += SlotsOfClass(i);
    }
    return slots;
}

/// The stacks of one thread and its part of the counters.
struct ThreadCache : CacheHead
{
    // The part of the small blocks' counters that mTaken and mQuota do not hold.
    std::atomic<std::uint64_t> mForwardCount{0}; // totals moved out of mTaken
    std::atomic<std::uint64_t> mForwardBytes{0};
    std::atomic<std::int64_t> mRaisedCount{0}; // the amount by which this thread has raised the peaks
    std::atomic<std::int64_t> mRaisedBytes{0};

    // Links of the ledger's list while the cache is in use, of the pool's list while it is idle.
    ThreadCache* mNext = nullptr;
    ThreadCache* mPrevious = nullptr;

    std::array<void*, SlotsBeforeClass(kClassCount)> mSlots;

    /// Constructs a cache with static lifetime.
    constexpr ThreadCache() noexcept : mSlots{} {}

    /// Constructs a cache on new pages. Does not touch the slots.
    struct OnFreshPages
    {
    };
    explicit ThreadCache(OnFreshPages) noexcept {}

    /// Makes every stack empty. The fast paths stay disabled until the ledger enables them.
    void MakeEmpty() noexcept;

    /// Returns a block of that size from its class's stack, first refilled from the store if empty. Null if out of
    /// memory. Updates the counters.
    void* Take(std::size_t inSize) noexcept;

    /// Puts a block on its class's stack. Moves the older half of a full stack to the store. Updates the counters.
    void Give(void* inBlock, std::size_t inSize) noexcept;

    /// Moves all blocks to the stores.
    void Drain() noexcept;

    /// Update the counters in the same way for a block from the C library.
    void CountTaken(std::size_t inSize) noexcept;
    void CountGiven(std::size_t inSize) noexcept;

private:
    void** Base(std::size_t inClass) noexcept;
    bool Refill(std::size_t inClass) noexcept;
    void Flush(std::size_t inClass) noexcept;
};

} // namespace SmallBlocks
} // namespace utility
} // namespace tvxcore
