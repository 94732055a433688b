#include <SmallBlocks/ThreadCache.h>

#include <SmallBlocks/Ledger.h>

#include <cstring>

namespace tvxcore {
namespace utility {
namespace SmallBlocks {

namespace {

constexpr std::array<std::size_t, kClassCount> MakeBases() noexcept
{
    std::array<std::size_t, kClassCount> bases{};
    for (std::size_t i = 0; i < kClassCount; ++i) {
        bases[i] = SlotsBeforeClass(i) + 1;
    }
    return bases;
}

constexpr std::array<std::size_t, kClassCount> kBases = MakeBases();

std::size_t PlaceOf(std::size_t inSize) noexcept
{
    return kPlaces[(inSize + kGrain - 1) / kGrain];
}

} // namespace

void** ThreadCache::Base(std::size_t inClass) noexcept
{
    return &mSlots[kBases[inClass]];
}

void ThreadCache::MakeEmpty() noexcept
{
    for (std::size_t i = 0; i < kClassCount; ++i) {
        void** const base = Base(i);
        base[-1] = nullptr;
        mPlaces[2 * i] = base;
        mPlaces[2 * i + 1] = base + StackSize(i);
    }
}

void* ThreadCache::Take(std::size_t inSize) noexcept
{
    const std::size_t index = PlaceOf(inSize);
    if (mPlaces[index][-1] == nullptr && !Refill(index / 2)) {
        return nullptr;
    }
    CountTaken(inSize);
    return *--mPlaces[index];
}

void ThreadCache::Give(void* inBlock, std::size_t inSize) noexcept
{
    const std::size_t index = PlaceOf(inSize);
    if (mPlaces[index] == mPlaces[index + 1]) {
        Flush(index / 2);
    }
    *mPlaces[index]++ = inBlock;
    CountGiven(inSize);
}

void ThreadCache::CountTaken(std::size_t inSize) noexcept
{
    EnsureQuotaFor(*this, inSize);
    mTaken.store(mTaken.load(std::memory_order_relaxed) + (kOneBlock + inSize), std::memory_order_relaxed);
}

void ThreadCache::CountGiven(std::size_t inSize) noexcept
{
    mQuota.store(mQuota.load(std::memory_order_relaxed) + (kOneBlock + inSize), std::memory_order_relaxed);
    ReturnExcessQuota(*this);
}

void ThreadCache::Drain() noexcept
{
    for (std::size_t i = 0; i < kClassCount; ++i) {
        void** const base = Base(i);
        GiveToStore(i, base, static_cast<std::size_t>(mPlaces[2 * i] - base));
        mPlaces[2 * i] = base;
    }
}

bool ThreadCache::Refill(std::size_t inClass) noexcept
{
    const std::size_t count = TakeFromStore(inClass, Base(inClass), BatchSize(inClass));
    mPlaces[2 * inClass] += count;
    return count != 0;
}

// Moves the older half: the blocks freed last are still in the processor's cache and should be reused first.
void ThreadCache::Flush(std::size_t inClass) noexcept
{
    const std::size_t batch = BatchSize(inClass);
    void** const base = Base(inClass);
    GiveToStore(inClass, base, batch);
    std::memmove(base, base + batch, (StackSize(inClass) - batch) * sizeof(void*));
    mPlaces[2 * inClass] -= batch;
}

} // namespace SmallBlocks
} // namespace utility
} // namespace tvxcore
