// The counters of infrequent events: shared by all threads, exact.
#pragma once

#include <tvxcore/Types.h>

#include <algorithm>
#include <atomic>
#include <cstdint>

namespace tvxcore {
namespace utility {
namespace SmallBlocks {

/// A counter: its current value, its peak, and its total.
class Counter
{
public:
    constexpr Counter() noexcept = default;

    void Add(std::uint64_t inAmount) noexcept
    {
        const std::uint64_t now = mCurrent.fetch_add(inAmount, std::memory_order_relaxed) + inAmount;
        std::uint64_t peak = mPeak.load(std::memory_order_relaxed);
        while (peak < now && !mPeak.compare_exchange_weak(peak, now, std::memory_order_relaxed)) {
        }
        mTotal.fetch_add(inAmount, std::memory_order_relaxed);
    }

    void Remove(std::uint64_t inAmount) noexcept { mCurrent.fetch_sub(inAmount, std::memory_order_relaxed); }

    void Read(unsigned __int64& outCurrent, unsigned __int64& outPeak, unsigned __int64& outTotal) const noexcept
    {
        // Another thread may be between its updates in Add, so the values may not be consistent yet.
        outCurrent = mCurrent.load(std::memory_order_relaxed);
        outPeak = std::max<unsigned __int64>(outCurrent, mPeak.load(std::memory_order_relaxed));
        outTotal = std::max<unsigned __int64>(outPeak, mTotal.load(std::memory_order_relaxed));
    }

private:
    std::atomic<std::uint64_t> mCurrent{0};
    std::atomic<std::uint64_t> mPeak{0};
    std::atomic<std::uint64_t> mTotal{0};
};

struct Counters
{
    Counter mSystemCount;
    Counter mSystemBytes;
    Counter mMasters;
    Counter mClusters;
};

inline Counters sCounters;

inline void CountSystemAllocation(std::size_t inBytes) noexcept
{
    sCounters.mSystemCount.Add(1);
    sCounters.mSystemBytes.Add(inBytes);
}

inline void CountSystemRelease(std::size_t inBytes) noexcept
{
    sCounters.mSystemCount.Remove(1);
    sCounters.mSystemBytes.Remove(inBytes);
}

} // namespace SmallBlocks
} // namespace utility
} // namespace tvxcore
