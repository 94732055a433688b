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

/// Blocks that a stack has room for: two batches.
constexpr std::size_t StackSize(std::size_t inClass) noexcept
{
    return 2 * BatchSize(inClass);
}

/// Slots of a class's stack with the null below it, rounded up to an odd number of cache lines: stacks of one size
/// would otherwise lie a power of two apart and crowd the same lines of the processor's cache.
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
    // The part of the small blocks' counters that the ledger cannot read off mTaken and mRoom.
    std::atomic<std::uint64_t> mForwardCount{0}; // totals brought forward from mTaken
    std::atomic<std::uint64_t> mForwardBytes{0};
    std::atomic<std::int64_t> mRaisedCount{0}; // by how much this thread has raised the peaks
    std::atomic<std::int64_t> mRaisedBytes{0};

    // In the ledger's list while in use, in the pool's list while idle.
    ThreadCache* mNext = nullptr;
    ThreadCache* mPrevious = nullptr;

    std::array<void*, SlotsBeforeClass(kClassCount)> mSlots;

    /// For a cache of static life.
    constexpr ThreadCache() noexcept : mSlots{} {}

    /// For a cache on fresh pages, whose slots are not touched before they are used.
    struct OnFreshPages
    {
    };
    explicit ThreadCache(OnFreshPages) noexcept {}

    /// Makes every stack empty. The fast ways stay closed until the ledger opens them.
    void MakeEmpty() noexcept;

    /// A block of that size: from its stack, or from the stores in a batch. Null when memory is out. Counted.
    void* Take(std::size_t inSize) noexcept;

    /// Puts a block on its stack, whose older half goes to the stores when it is full. Counted.
    void Give(void* inBlock, std::size_t inSize) noexcept;

    /// Gives all blocks to the stores.
    void Drain() noexcept;

    /// The same counts for a block that is not ours.
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
