// The allocator that every string, record and counter of the libraries comes from.
#pragma once

#include <tvxcore/Config.h>
#include <tvxcore/SmallBlockCache.h>
#include <tvxcore/Types.h>

#include <cstddef>
#include <limits>
#include <new>

namespace tvxcore {
namespace utility {

/// Process-wide allocator for small blocks. Every operation may be called from any thread, at any time: before static
/// construction, after static destruction, and in the thread-local destructors of an ending thread.
///
/// Blocks up to SmallBlocks::kLargestSmall bytes come from size classes, through caches that belong to the threads;
/// larger ones are the C library's. Memory of the classes goes back to the system as its clusters fall empty, less what
/// the caches and the shared stores keep ready. Under AddressSanitizer every block is the C library's.
///
/// Windows ends a process by stopping all threads but one, wherever they are. The last thread is still served, from
/// its cache and from fresh pages; what is not its cache's is then no longer counted, nor given back.
class TVXCORE_API SmallBlockAllocator
{
public:
    /// A block of inSize bytes, aligned for every fundamental type. Null when memory is out; never throws.
    /// A size of 0 gives a block too.
    static void* Allocate(std::size_t inSize) noexcept;

    /// Gives a block back. inSize is the size that was asked for; null is accepted and ignored.
    /// A block may be given back on any thread.
    static void Dispose(void* inBlock, std::size_t inSize) noexcept;

    class TVXCORE_API Metrics
    {
    public:
        /// 18 counters, three for each of six subjects: now, the highest ever, and the sum of all time.
        ///   System allocations  what was taken from the system or the C library: clusters, the threads' caches, and
        ///                       blocks too large for a class
        ///   Small blocks        blocks handed out by the classes; their bytes are the bytes asked for
        ///   Master blocks       runs of 64 KiB that hold the blocks of one class
        ///   Clusters            runs of 1 MiB that master blocks are cut from
        ///
        /// A current value or total that other threads change at that moment may be short by what they do meanwhile.
        /// A peak is never below a current value of any snapshot. The peaks of the small blocks are exact while one
        /// thread allocates and disposes; with several, a peak may exceed the highest value there was by less than
        /// 16,384 blocks and 16 MiB for each other thread. All other peaks are exact.
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

        /// Fills the snapshot. False means that no metrics exist; outSnapshot is then untouched.
        static bool GetSnapshot(Snapshot& outSnapshot);
    };

    /// A standard allocator over Allocate and Dispose. Throws std::bad_alloc where Allocate gives null.
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
                throw std::bad_alloc();
            }
            void* const block = Allocate(inCount * sizeof(T));
            if (block == nullptr) {
                throw std::bad_alloc();
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
