#include <SmallBlocks/Stores.h>

#include <SmallBlocks/Guard.h>
#include <SmallBlocks/List.h>

#include <array>
#include <cstring>

namespace tvxcore {
namespace utility {
namespace SmallBlocks {

namespace {

struct alignas(64) Store
{
    threads::CoreMutex mMutex;
    std::size_t mCount TVXCORE_GUARDED_BY(mMutex) = 0;
    List<Master> mMasters TVXCORE_GUARDED_BY(mMutex); // master blocks of this class that have free blocks
};

constexpr std::size_t SlotsBefore(std::size_t inClass) noexcept
{
    std::size_t slots = 0;
    for (std::size_t i = 0; i < inClass; ++i) {
        slots += StoreSize(i);
    }
    return slots;
}

constexpr std::array<std::size_t, kClassCount> MakeOffsets() noexcept
{
    std::array<std::size_t, kClassCount> offsets{};
    for (std::size_t i = 0; i < kClassCount; ++i) {
        offsets[i] = SlotsBefore(i);
    }
    return offsets;
}

constexpr std::array<std::size_t, kClassCount> kOffsets = MakeOffsets();

Store sStores[kClassCount];
void* sSlots[SlotsBefore(kClassCount)];

// A master block without free blocks is in no list; it returns to the list when one of its blocks is freed.
Master* MasterWithFreeBlocks(Store& ioStore, std::size_t inClass) noexcept TVXCORE_REQUIRES(ioStore.mMutex)
{
    if (ioStore.mMasters.Front() == nullptr) {
        if (Master* const master = NewMaster(inClass)) {
            ioStore.mMasters.PushFront(*master);
        }
    }
    return ioStore.mMasters.Front();
}

std::size_t TakeFromMasters(Store& ioStore, std::size_t inClass, void** outBlocks, std::size_t inCount) noexcept
    TVXCORE_REQUIRES(ioStore.mMutex)
{
    std::size_t count = 0;
    while (count < inCount) {
        Master* const master = MasterWithFreeBlocks(ioStore, inClass);
        if (master == nullptr) {
            break;
        }
        while (count < inCount && master->HasFreeBlocks()) {
            outBlocks[count++] = master->Take();
        }
        if (!master->HasFreeBlocks()) {
            ioStore.mMasters.Remove(*master);
        }
    }
    return count;
}

void GiveToMaster(Store& ioStore, void* inBlock) noexcept TVXCORE_REQUIRES(ioStore.mMutex)
{
    Master& master = MasterOf(inBlock);
    if (!master.HasFreeBlocks()) {
        ioStore.mMasters.PushFront(master);
    }
    master.Give(inBlock);
    if (master.IsUnused()) {
        ioStore.mMasters.Remove(master);
        DeleteMaster(master);
    }
}

} // namespace

std::size_t TakeFromStore(std::size_t inClass, void** outBlocks, std::size_t inCount) noexcept
{
    Store& store = sStores[inClass];
    const Guard guard(store.mMutex);
    const std::size_t count = std::min(inCount, store.mCount);
    if (count == 0) {
        return TakeFromMasters(store, inClass, outBlocks, inCount);
    }
    store.mCount -= count;
    std::memcpy(outBlocks, &sSlots[kOffsets[inClass] + store.mCount], count * sizeof(void*));
    return count;
}

void GiveToStore(std::size_t inClass, void* const* inBlocks, std::size_t inCount) noexcept
{
    Store& store = sStores[inClass];
    const Guard guard(store.mMutex);
    const std::size_t kept = std::min(inCount, StoreSize(inClass) - store.mCount);
    std::memcpy(&sSlots[kOffsets[inClass] + store.mCount], inBlocks, kept * sizeof(void*));
    store.mCount += kept;
    for (std::size_t i = kept; i < inCount; ++i) {
        GiveToMaster(store, inBlocks[i]);
    }
}

void ForgetStores() noexcept
{
    for (Store& store : sStores) {
        const Guard guard(store.mMutex);
        store.mCount = 0;
        store.mMasters = List<Master>();
    }
}

// The locks stay held until UnlockStores.
void LockStores() noexcept TVXCORE_UNCHECKED_LOCKING
{
    for (Store& store : sStores) {
        store.mMutex.lock();
    }
}

void UnlockStores() noexcept TVXCORE_UNCHECKED_LOCKING
{
    for (Store& store : sStores) {
        store.mMutex.unlock();
    }
}

} // namespace SmallBlocks
} // namespace utility
} // namespace tvxcore
