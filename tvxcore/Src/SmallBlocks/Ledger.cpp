#include <SmallBlocks/Ledger.h>

#include <SmallBlocks/Guard.h>
#include <SmallBlocks/List.h>

#include <algorithm>

namespace tvxcore {
namespace utility {
namespace SmallBlocks {

namespace {

constexpr std::uint64_t kBytesMask = kOneBlock - 1;
constexpr std::memory_order kRelaxed = std::memory_order_relaxed;

// Extra quota that a thread claims, so that it claims less often.
constexpr std::int64_t kClaimCount = 256;
constexpr std::int64_t kClaimBytes = 256 * 1024;

struct Amount
{
    std::int64_t mCount;
    std::int64_t mBytes;
};

Amount Unpack(std::uint64_t inPacked) noexcept
{
    return {static_cast<std::int64_t>(inPacked >> 40), static_cast<std::int64_t>(inPacked & kBytesMask)};
}

std::uint64_t Pack(const Amount& inAmount) noexcept
{
    return static_cast<std::uint64_t>(inAmount.mCount) * kOneBlock + static_cast<std::uint64_t>(inAmount.mBytes);
}

// The shared part of a counter. mUnclaimed is also read without the lock, to test whether it is 0.
struct Account
{
    std::int64_t mPeak = 0;
    std::uint64_t mTotal = 0;
    std::atomic<std::int64_t> mUnclaimed{0};

    std::int64_t Claim(std::int64_t inMissing, std::int64_t inWanted) noexcept
    {
        const std::int64_t unclaimed = mUnclaimed.load(kRelaxed);
        const std::int64_t claimed = inMissing > 0 ? std::min(unclaimed, std::max(inMissing, inWanted)) : 0;
        mUnclaimed.store(unclaimed - claimed, kRelaxed);
        return claimed;
    }

    void Leave(std::int64_t inQuota) noexcept { mUnclaimed.store(mUnclaimed.load(kRelaxed) + inQuota, kRelaxed); }
};

threads::CoreMutex sMutex;
Account sCount;
Account sBytes;
List<ThreadCache> sCaches TVXCORE_GUARDED_BY(sMutex);
std::size_t sServesBelow TVXCORE_GUARDED_BY(sMutex) = kLargestSmall + 1;

Amount QuotaOf(const ThreadCache& inCache) noexcept
{
    return Unpack(inCache.mQuota.load(kRelaxed) - inCache.mTaken.load(kRelaxed));
}

template <class Number>
void AddTo(std::atomic<Number>& ioNumber, Number inAmount) noexcept
{
    // Only the cache's thread writes this word.
    ioNumber.store(ioNumber.load(kRelaxed) + inAmount, kRelaxed);
}

void AddQuota(ThreadCache& ioCache, const Amount& inAmount) noexcept
{
    AddTo(ioCache.mQuota, Pack(inAmount));
}

// Resets mTaken to zero; the quota stays the same.
void CarryForward(ThreadCache& ioCache) noexcept
{
    const Guard guard(sMutex);
    const std::uint64_t taken = ioCache.mTaken.load(kRelaxed);
    AddTo(ioCache.mForwardCount, taken >> 40);
    AddTo(ioCache.mForwardBytes, taken & kBytesMask);
    AddTo(ioCache.mQuota, 0 - taken);
    ioCache.mTaken.store(0, kRelaxed);
}

Amount MissingFor(const ThreadCache& inCache, std::size_t inSize) noexcept
{
    const Amount quota = QuotaOf(inCache);
    return {std::max<std::int64_t>(0, 1 - quota.mCount),
            std::max<std::int64_t>(0, static_cast<std::int64_t>(inSize) - quota.mBytes)};
}

void ClaimQuota(ThreadCache& ioCache, const Amount& inMissing) noexcept
{
    const Guard guard(sMutex);
    AddQuota(ioCache, {sCount.Claim(inMissing.mCount, kClaimCount), sBytes.Claim(inMissing.mBytes, kClaimBytes)});
}

void ReturnQuotaAbove(ThreadCache& ioCache, const Amount& inKept) noexcept
{
    const Guard guard(sMutex);
    const Amount quota = QuotaOf(ioCache);
    const Amount left{std::max<std::int64_t>(0, quota.mCount - inKept.mCount),
                      std::max<std::int64_t>(0, quota.mBytes - inKept.mBytes)};
    sCount.Leave(left.mCount);
    sBytes.Leave(left.mBytes);
    AddQuota(ioCache, {-left.mCount, -left.mBytes});
}

// The values of mTaken and mQuota, read with at most a few steps of their thread in between.
struct Words
{
    std::uint64_t mTaken;
    std::uint64_t mQuota;
};

Words ReadWords(const ThreadCache& inCache) noexcept
{
    constexpr std::uint64_t kFewSteps = 32 * kOneBlock;
    for (;;) {
        const std::uint64_t taken = inCache.mTaken.load(std::memory_order_acquire);
        const std::uint64_t quota = inCache.mQuota.load(std::memory_order_acquire);
        if (inCache.mTaken.load(kRelaxed) - taken < kFewSteps) {
            return {taken, quota};
        }
    }
}

struct Sums
{
    std::int64_t mQuota = 0;
    std::int64_t mRaised = 0;
    std::uint64_t mTaken = 0;
};

void Fill(const Account& inAccount, const Sums& inSums, unsigned __int64& outCurrent, unsigned __int64& outPeak,
          unsigned __int64& outTotal) noexcept
{
    const std::int64_t peak = inAccount.mPeak + inSums.mRaised;
    const std::int64_t current = peak - inAccount.mUnclaimed.load(kRelaxed) - inSums.mQuota;
    outPeak = static_cast<unsigned __int64>(peak);
    outCurrent = static_cast<unsigned __int64>(std::max<std::int64_t>(0, current));
    outTotal = std::max<unsigned __int64>(outPeak, inAccount.mTotal + inSums.mTaken);
}

void Enter(ThreadCache& ioCache) noexcept TVXCORE_REQUIRES(sMutex)
{
    ioCache.mTaken.store(0, kRelaxed);
    ioCache.mQuota.store(0, kRelaxed);
    ioCache.mForwardCount.store(0, kRelaxed);
    ioCache.mForwardBytes.store(0, kRelaxed);
    ioCache.mRaisedCount.store(0, kRelaxed);
    ioCache.mRaisedBytes.store(0, kRelaxed);
    sCaches.PushFront(ioCache);
}

} // namespace

void EnterCache(ThreadCache& ioCache) noexcept
{
    const Guard guard(sMutex);
    Enter(ioCache);
    ioCache.mServesBelow.store(sServesBelow, kRelaxed);
    ioCache.mTakesBelow = kLargestSmall + 1;
}

void EnterSharedCache(ThreadCache& ioCache) noexcept
{
    const Guard guard(sMutex);
    Enter(ioCache);
}

void LeaveCache(ThreadCache& ioCache) noexcept
{
    const Guard guard(sMutex);
    const Amount quota = QuotaOf(ioCache);
    const Amount taken = Unpack(ioCache.mTaken.load(kRelaxed));
    sCount.mPeak += ioCache.mRaisedCount.load(kRelaxed);
    sBytes.mPeak += ioCache.mRaisedBytes.load(kRelaxed);
    sCount.mTotal += ioCache.mForwardCount.load(kRelaxed) + static_cast<std::uint64_t>(taken.mCount);
    sBytes.mTotal += ioCache.mForwardBytes.load(kRelaxed) + static_cast<std::uint64_t>(taken.mBytes);
    sCount.Leave(quota.mCount);
    sBytes.Leave(quota.mBytes);
    sCaches.Remove(ioCache);
    ioCache.mServesBelow.store(0, kRelaxed);
    ioCache.mTakesBelow = 0;
}

void EnsureQuotaFor(ThreadCache& ioCache, std::size_t inSize) noexcept
{
    ReturnExcessQuota(ioCache);
    if (((ioCache.mTaken.load(kRelaxed) + (kOneBlock + inSize)) & kGuards) != 0) {
        CarryForward(ioCache);
    }
    Amount missing = MissingFor(ioCache, inSize);
    if ((missing.mCount > 0 && sCount.mUnclaimed.load(kRelaxed) > 0)
        || (missing.mBytes > 0 && sBytes.mUnclaimed.load(kRelaxed) > 0)) {
        ClaimQuota(ioCache, missing);
        missing = MissingFor(ioCache, inSize);
    }
    AddTo(ioCache.mRaisedCount, missing.mCount);
    AddTo(ioCache.mRaisedBytes, missing.mBytes);
    AddQuota(ioCache, missing);
}

void ReturnExcessQuota(ThreadCache& ioCache) noexcept
{
    const Amount quota = QuotaOf(ioCache);
    if (quota.mCount > kMaxQuotaCount || quota.mBytes > kMaxQuotaBytes) {
        ReturnQuotaAbove(ioCache, {kMaxQuotaCount / 2, kMaxQuotaBytes / 2});
    }
}

void ReturnAllQuota(ThreadCache& ioCache) noexcept
{
    ReturnQuotaAbove(ioCache, {0, 0});
}

void ReadSmallBlockCounters(SmallBlockAllocator::Metrics::Snapshot& outSnapshot) noexcept
{
    const Guard guard(sMutex);
    Sums count;
    Sums bytes;
    for (const ThreadCache* cache = sCaches.Front(); cache != nullptr; cache = cache->mNext) {
        const Words words = ReadWords(*cache);
        const Amount taken = Unpack(words.mTaken);
        const Amount quota = Unpack(words.mQuota - words.mTaken);
        count.mTaken += cache->mForwardCount.load(kRelaxed) + static_cast<std::uint64_t>(taken.mCount);
        bytes.mTaken += cache->mForwardBytes.load(kRelaxed) + static_cast<std::uint64_t>(taken.mBytes);
        count.mQuota += quota.mCount;
        bytes.mQuota += quota.mBytes;
        count.mRaised += cache->mRaisedCount.load(kRelaxed);
        bytes.mRaised += cache->mRaisedBytes.load(kRelaxed);
    }
    Fill(sCount, count, outSnapshot.mSmallBlockCountCurrent, outSnapshot.mSmallBlockCountPeak,
         outSnapshot.mSmallBlockCountTotal);
    Fill(sBytes, bytes, outSnapshot.mSmallBlockBytesCurrent, outSnapshot.mSmallBlockBytesPeak,
         outSnapshot.mSmallBlockBytesTotal);
}

void SetFastAllocation(FastAllocation inState) noexcept
{
    const Guard guard(sMutex);
    sServesBelow = inState == FastAllocation::kOn ? kLargestSmall + 1 : 0;
    for (ThreadCache* cache = sCaches.Front(); cache != nullptr; cache = cache->mNext) {
        if (cache->mTakesBelow != 0) {
            cache->mServesBelow.store(sServesBelow, kRelaxed);
        }
    }
}

ThreadCache* FirstCache() noexcept
{
    const Guard guard(sMutex);
    return sCaches.Front();
}

// The lock stays held until UnlockLedger.
void LockLedger() noexcept TVXCORE_UNCHECKED_LOCKING
{
    sMutex.lock();
}

void UnlockLedger() noexcept TVXCORE_UNCHECKED_LOCKING
{
    sMutex.unlock();
}

} // namespace SmallBlocks
} // namespace utility
} // namespace tvxcore
