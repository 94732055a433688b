// The allocator for all strings, records and counters of the libraries.
#pragma once

#include <tvxcore/Config.h>
#include <tvxcore/SmallBlockCache.h>
#include <tvxcore/Throw.h>
#include <tvxcore/Types.h>

#include <cstddef>
#include <limits>

namespace tvxcore {
namespace utility {

/// Process-wide allocator for small blocks.
///
/// Blocks up to SmallBlocks::kLargestSmall bytes come from size classes, through thread caches; larger ones come from
/// the C library. A cluster is returned to the system when none of its blocks is allocated or held by a cache or shared
/// store, but one such cluster is kept. Under AddressSanitizer every block comes from the C library.
///
/// Owner:    the caller owns a block until Dispose.
/// Threads:  thread-safe at any time: before static construction, after static destruction, and in the thread-local
///           destructors of an exiting thread.
/// Failure:  Allocate returns null. Only STLAllocator throws.
/// On Windows: process exit stops all threads but one at arbitrary points. The last thread can still allocate,
///             from its cache and from new pages; blocks that are not from its cache are then neither counted nor
///             freed.
class TVXCORE_API SmallBlockAllocator
{
public:
    /// Returns a block of inSize bytes, aligned for every fundamental type; null if out of memory. A size of 0 also
    /// returns a block. Never throws.
    static void* Allocate(std::size_t inSize) noexcept;

    /// Frees a block, on any thread. inSize is the size that was passed to Allocate. Ignores null.
    static void Dispose(void* inBlock, std::size_t inSize) noexcept;

    class TVXCORE_API Metrics ///< Statistics of the allocator.
    {
    public:
        /// Counts, and for the first two subjects also bytes: each as current value, peak, and total over time.
        ///   System allocations  memory from the system or the C library: clusters, thread caches, and blocks too large
        ///                       for a class
        ///   Small blocks        blocks allocated from the classes; their bytes are the bytes requested
        ///   Master blocks       runs of 64 KiB that hold the blocks of one class
        ///   Clusters            runs of 1 MiB that master blocks are cut from
        ///
        /// A current value or a total may miss changes that other threads make during the call. A peak is never below
        /// the current value in any snapshot. The peaks of the small blocks are exact while one thread allocates and
        /// frees; with several threads, a peak may exceed the true one by less than 16,384 blocks and 16 MiB for each
        /// other thread. All other peaks are exact.
        struct Snapshot
        {
            unsigned __int64 mSystemAllocationCountCurrent;
            unsigned __int64 mSystemAllocationCountPeak;
            unsigned __int64 mSystemAllocationCountTotal;
            unsigned __int64 mSystemAllocationBytesCurrent;
            unsigned __int64 mSystemAllocationBytesPeak;
            unsigned __int64 mSystemAllocationBytesTotal;
            unsigned __int64 mSmallBlockCountCurrent;
            unsigned __int64 mSmallBlockCountPeak;
            unsigned __int64 mSmallBlockCountTotal;
            unsigned __int64 mSmallBlockBytesCurrent;
            unsigned __int64 mSmallBlockBytesPeak;
            unsigned __int64 mSmallBlockBytesTotal;
            unsigned __int64 mMasterBlockCountCurrent;
            unsigned __int64 mMasterBlockCountPeak;
            unsigned __int64 mMasterBlockCountTotal;
            unsigned __int64 mClusterCountCurrent;
            unsigned __int64 mClusterCountPeak;
            unsigned __int64 mClusterCountTotal;
        };

        /// Fills the snapshot. Returns false, with outSnapshot untouched, if there are no metrics.
        static bool GetSnapshot(Snapshot& outSnapshot);
    };

    /// A standard allocator over Allocate and Dispose. Throws std::bad_alloc if Allocate returns null.
    template <class T>
    class STLAllocator
    {
    public:
        using value_type = T;

        STLAllocator() noexcept = default;
        template <class U>
        STLAllocator(const STLAllocator<U>&) noexcept
        {
        }

        T* allocate(std::size_t inCount)
        {
            if (inCount > (std::numeric_limits<std::size_t>::max)() / sizeof(T)) {
                Internal::ThrowBadAlloc();
            }
            void* const block = Allocate(inCount * sizeof(T));
            if (block == nullptr) {
                Internal::ThrowBadAlloc();
            }
            return static_cast<T*>(block);
        }

        void deallocate(T* inBlock, std::size_t inCount) noexcept { Dispose(inBlock, inCount * sizeof(T)); }

        template <class U>
        bool operator==(const STLAllocator<U>&) const noexcept
        {
            return true;
        }
        template <class U>
        bool operator!=(const STLAllocator<U>&) const noexcept
        {
            return false;
        }
    };
};

#if TVXCORE_HAS_SHARED_THREAD_LOCALS

inline void* SmallBlockAllocator::Allocate(std::size_t inSize) noexcept
{
    void* const block = SmallBlocks::TakeFromCache(*SmallBlocks::sThreadCache, inSize);
    return __builtin_expect(block != nullptr, 1) ? block : SmallBlocks::AllocateSlowly(inSize);
}

inline void SmallBlockAllocator::Dispose(void* inBlock, std::size_t inSize) noexcept
{
    if (inBlock != nullptr && !SmallBlocks::GiveToCache(*SmallBlocks::sThreadCache, inBlock, inSize)) {
        SmallBlocks::DisposeSlowly(inBlock, inSize);
    }
}

#endif

} // namespace utility
} // namespace tvxcore
