// The part of the small block allocator that is compiled into its callers. Hosts use SmallBlockAllocator.
//
// Each thread keeps a stack of free blocks for each size class. A block is taken from and given to the calling thread's
// stack, whichever thread it came from; whole batches move between a stack and the stores that all threads share. The
// caller tells the size when it gives a block back, so a block needs no header and its class no search.
//
// The counters cost two additions. A packed word holds a number of blocks and a number of bytes, and sums of packed
// words stay right as long as the differences that are looked at fit their fields:
//   mTaken  what the thread has allocated since its totals were last brought forward
//   mRoom   mTaken, and what the thread may still allocate before a peak moves
// Allocate adds to mTaken, Dispose to mRoom. Allocate goes the slow way when the room is used up or a sum has grown
// into a guard bit; the slow way keeps the peaks and the totals.
//
// All of this is part of the binary interface: hosts carry it compiled in.
#pragma once

#include <tvxcore/Config.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

namespace tvxcore {
namespace utility {
namespace SmallBlocks {

inline constexpr std::size_t kGrain = 16;           // sizes are rounded up to this, and blocks aligned to it
inline constexpr std::size_t kLargestSmall = 16384; // larger blocks are the system's
inline constexpr std::size_t kClassCount = 40;

using ClassSizes = std::array<std::uint16_t, kClassCount>;
using PlaceTable = std::array<std::uint8_t, kLargestSmall / kGrain + 1>;

/// Every grain up to 256 bytes, then four classes for each doubling, where at most a fifth of a block is lost.
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

/// For each number of grains the index of its class's pair in CacheHead::mPlaces.
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

// A packed number of blocks and of bytes. The guards stand far below the ends of their fields: the slow way is to come
// by once in a while, so that a thread does not gather room without limit.
inline constexpr std::uint64_t kOneBlock = 1ull << 40;
inline constexpr std::uint64_t kGuards = kOneBlock << 13 | 1ull << 23;

/// What the fast paths touch of a thread's cache. All of it belongs to the thread; the atomic members are read by
/// others, and mServesBelow is set by others.
struct CacheHead
{
    constexpr CacheHead() noexcept = default;

    std::atomic<std::size_t> mServesBelow{0}; // smaller sizes are served from here; 0 sends all the slow way
    std::size_t mTakesBelow = 0;              // the same for blocks that are given back
    std::atomic<std::uint64_t> mTaken{0};
    std::atomic<std::uint64_t> mRoom{0};
    // Two for each class: above its stack's top block, and the end of its stack's room. A null lies below each stack.
    std::array<void**, 2 * kClassCount> mPlaces{};
};

/// The slow ways. They do everything that the fast ones do, and the rest.
TVXCORE_API void* AllocateSlowly(std::size_t inSize) noexcept;
TVXCORE_API void DisposeSlowly(void* inBlock, std::size_t inSize) noexcept;

/// Both limits of a cache lie at kLargestSmall + 1 or below, which the compiler cannot see: for a size that it knows to
/// be large it then leaves the fast way out.
inline void AssumeSmall(std::size_t inSize) noexcept
{
    if (inSize > kLargestSmall) {
        __builtin_unreachable();
    }
}

// Recent processors hand a word that was just stored to its next reader without delay, where both name it by a register
// and an offset and where the sum between them is no addition in place. By an index, or with one, each turn waits for
// the store of the one before it: twice the time of a pair. Compilers prefer those forms, so these two hold them to the
// others.

/// The pair of a class's places, its address in a register.
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

/// A block from the cache, or null when it takes the slow way.
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
    const std::uint64_t room = ioCache.mRoom.load(std::memory_order_relaxed) - taken;
    if (__builtin_expect(block == nullptr || ((room | taken) & kGuards) != 0, 0)) {
        return nullptr;
    }
    ioCache.mTaken.store(taken, std::memory_order_relaxed);
    places[0] = top;
    return block;
}

/// False when the block takes the slow way.
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
    const std::uint64_t room = ioCache.mRoom.load(std::memory_order_relaxed);
    ioCache.mRoom.store(Sum(room, kOneBlock + inSize), std::memory_order_relaxed);
    return true;
}

#if TVXCORE_HAS_SHARED_THREAD_LOCALS
/// The calling thread's cache; never null. The word lies in the static block of each thread, so that it is read with
/// no call. It is constant-initialised, which only this older keyword lets a header promise.
extern TVXCORE_API __attribute__((tls_model("initial-exec"))) __thread CacheHead* sThreadCache;
#endif

} // namespace SmallBlocks
} // namespace utility
} // namespace tvxcore
