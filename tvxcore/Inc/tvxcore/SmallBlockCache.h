// The part of the small block allocator that is compiled into its callers. Hosts use SmallBlockAllocator.
//
// Each thread has a stack of free blocks for each size class. Blocks are allocated from and freed to the calling
// thread's stack, whichever thread allocated them; whole batches move between a stack and the stores that all threads
// share. The caller passes the size when it frees a block, so a block needs no header and no search for its class.
//
// The counters cost an addition per Allocate and per Dispose. Each counter is a word with two fields,
// a number of blocks and a number of bytes. Fields may overflow: only differences of counters must fit them.
//   mTaken   what the thread has allocated since its totals were last updated
//   mQuota   mTaken, plus what the thread may still allocate before a peak must be raised
// Allocate adds to mTaken, Dispose to mQuota. Allocate takes the slow path if the quota (mQuota - mTaken) is used up or
// a sum has carried into a guard bit; the slow path updates the peaks and the totals.
//
// This whole file is part of the binary interface: it is compiled into hosts.
#pragma once

#include <tvxcore/Config.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

namespace tvxcore {
namespace utility {
namespace SmallBlocks {

inline constexpr std::size_t kGrain = 16;           // block sizes are multiples of this, and so are addresses
inline constexpr std::size_t kLargestSmall = 16384; // larger blocks come from the C library
inline constexpr std::size_t kClassCount = 40;

using ClassSizes = std::array<std::uint16_t, kClassCount>;
using PlaceTable = std::array<std::uint8_t, kLargestSmall / kGrain + 1>;

/// Multiples of kGrain up to 256 bytes, then four classes for each doubling, which waste at most a fifth of a block.
constexpr ClassSizes MakeClassSizes() noexcept
{
    ClassSizes sizes{};
    std::size_t size = 0;
    for (std::size_t i = 0; i < kClassCount; ++i) {
        std::size_t step = kGrain;
        for (std::size_t doubled = 256; doubled <= size; doubled *= 2) {
            step = doubled / 4;
        }
        size += step;
        sizes[i] = static_cast<std::uint16_t>(size);
    }
    return sizes;
}

/// Maps a number of grains to the index of its class's pair in CacheHead::mPlaces.
constexpr PlaceTable MakePlaceTable() noexcept
{
    PlaceTable table{};
    const ClassSizes sizes = MakeClassSizes();
    std::size_t index = 0;
    for (std::size_t grains = 0; grains < table.size(); ++grains) {
        while (sizes[index] < grains * kGrain) {
            ++index;
        }
        table[grains] = static_cast<std::uint8_t>(2 * index);
    }
    return table;
}

TVXCORE_LOCAL inline constexpr ClassSizes kClassSizes = MakeClassSizes();
TVXCORE_LOCAL inline constexpr PlaceTable kPlaces = MakePlaceTable();

static_assert(kClassSizes[0] == kGrain && kClassSizes[15] == 256 && kClassSizes[kClassCount - 1] == kLargestSmall);

// A packed number of blocks and of bytes. The guard bits are far below the tops of their fields, so that a thread
// occasionally takes the slow path and cannot accumulate unlimited quota.
inline constexpr std::uint64_t kOneBlock = 1ull << 40;
inline constexpr std::uint64_t kGuards = kOneBlock << 13 | 1ull << 23;

/// The part of a thread's cache that the fast paths access. This part belongs to the thread; other threads read the
/// atomic members, and write mServesBelow.
struct CacheHead
{
    constexpr CacheHead() noexcept = default;

    std::atomic<std::size_t> mServesBelow{0}; // smaller sizes are allocated from this cache; 0 forces the slow path
    std::size_t mTakesBelow = 0;              // smaller sizes are freed to this cache; 0 forces the slow path
    std::atomic<std::uint64_t> mTaken{0};
    std::atomic<std::uint64_t> mQuota{0};
    // Two pointers for each class: one past the top block of its stack, and the end of the stack's memory. The slot
    // below the first block of each stack holds null.
    std::array<void**, 2 * kClassCount> mPlaces{};
};

/// The slow paths, which also handle every case of the fast paths.
TVXCORE_API void* AllocateSlowly(std::size_t inSize) noexcept;
TVXCORE_API void DisposeSlowly(void* inBlock, std::size_t inSize) noexcept;

/// mServesBelow and mTakesBelow are at most kLargestSmall + 1, which the compiler cannot see. This hint lets it drop
/// the fast path for sizes known to be larger.
inline void AssumeSmall(std::size_t inSize) noexcept
{
    if (inSize > kLargestSmall) {
        __builtin_unreachable();
    }
}

// Recent processors forward a store to the next load of the word without delay if both use base-plus-displacement
// addressing and the addition between them has no memory operand. With indexed addresses each iteration of a loop of
// Allocate and Dispose waits for the store of the previous one, which doubles its time. Compilers emit the slow forms;
// these two functions force the fast ones.

/// Returns the pair of stack pointers of a class, with its address in a register.
inline void*** PlacesOf(CacheHead& ioCache, std::size_t inSize) noexcept
{
    void*** places = &ioCache.mPlaces[kPlaces[(inSize + kGrain - 1) / kGrain]];
    if (!__builtin_constant_p(inSize)) {
        __asm__("" : "+r"(places));
    }
    return places;
}

inline std::uint64_t Sum(std::uint64_t inFirst, std::uint64_t inSecond) noexcept
{
    std::uint64_t sum;
    __asm__("leaq (%1,%2), %0" : "=r"(sum) : "r"(inFirst), "r"(inSecond));
    return sum;
}

/// Returns a block from the cache, or null if the slow path is needed.
inline void* TakeFromCache(CacheHead& ioCache, std::size_t inSize) noexcept
{
    if (__builtin_expect(inSize >= ioCache.mServesBelow.load(std::memory_order_relaxed), 0)) {
        return nullptr;
    }
    AssumeSmall(inSize);
    void*** const places = PlacesOf(ioCache, inSize);
    void** const top = places[0] - 1;
    void* const block = *top;
    const std::uint64_t taken = Sum(ioCache.mTaken.load(std::memory_order_relaxed), kOneBlock + inSize);
    const std::uint64_t quota = ioCache.mQuota.load(std::memory_order_relaxed) - taken;
    if (__builtin_expect(block == nullptr || ((quota | taken) & kGuards) != 0, 0)) {
        return nullptr;
    }
    ioCache.mTaken.store(taken, std::memory_order_relaxed);
    places[0] = top;
    return block;
}

/// Returns false if the slow path is needed.
inline bool GiveToCache(CacheHead& ioCache, void* inBlock, std::size_t inSize) noexcept
{
    if (__builtin_expect(inSize >= ioCache.mTakesBelow, 0)) {
        return false;
    }
    AssumeSmall(inSize);
    void*** const places = PlacesOf(ioCache, inSize);
    void** const place = places[0];
    if (__builtin_expect(place == places[1], 0)) {
        return false;
    }
    *place = inBlock;
    places[0] = place + 1;
    const std::uint64_t quota = ioCache.mQuota.load(std::memory_order_relaxed);
    ioCache.mQuota.store(Sum(quota, kOneBlock + inSize), std::memory_order_relaxed);
    return true;
}

#if TVXCORE_HAS_SHARED_THREAD_LOCALS
/// The calling thread's cache; never null. The pointer is in each thread's static TLS block, so reading it needs no
/// call. The pointer is constant-initialised, which in a header only the older keyword __thread guarantees.
extern TVXCORE_API __attribute__((tls_model("initial-exec"))) __thread CacheHead* sThreadCache;
#endif

} // namespace SmallBlocks
} // namespace utility
} // namespace tvxcore
