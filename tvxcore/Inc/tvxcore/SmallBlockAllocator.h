// The allocator that every string, record and counter of the libraries comes from.
#pragma once

#include <tvxcore/Config.h>
#include <tvxcore/Types.h>

#include <cstddef>
#include <limits>
#include <new>

namespace tvxcore {
namespace utility {

/// Process-wide allocator for small blocks. Every operation may be called from any thread.
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
            void* block = Allocate(inCount * sizeof(T));
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

} // namespace utility
} // namespace tvxcore
