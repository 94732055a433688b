#include "LinuxRegistryHandles.h"

#include <cstdint>
#include <utility>

namespace ORL {
namespace Registry {
namespace Linux {

namespace {

// In a handle bit 0 is set, bit 1 marks the machine's store, bits 2 to 31 contain the slot, and the higher bits contain
// the serial number. The root handles are those of Windows, sign-extended. No other handle equals them, because their
// bit 31 would mean a slot of 2^29 or more, above kMaxSlots.
constexpr unsigned kSlotShift = 2;
constexpr unsigned kSerialShift = 32;
constexpr std::uint32_t kMaxSlots = 1u << 28;

} // namespace

bool DecodeHandle(Platform::KeyHandle inHandle, HandleParts& outParts) noexcept
{
    if (inHandle == Platform::GetUserRoot_Impl() || inHandle == Platform::GetMachineRoot_Impl()) {
        outParts.mIsRoot = true;
        outParts.mIsMachine = inHandle == Platform::GetMachineRoot_Impl();
        return true;
    }
    const auto bits = reinterpret_cast<std::uintptr_t>(inHandle);
    outParts.mIsRoot = false;
    outParts.mIsMachine = (bits & 2) != 0;
    outParts.mSlot = static_cast<std::uint32_t>(bits) >> kSlotShift;
    outParts.mSerial = static_cast<std::uint32_t>(bits >> kSerialShift);
    return (bits & 1) != 0;
}

Platform::KeyHandle HandleTable::Add(std::shared_ptr<StoredKey> inKey, unsigned inAccess)
{
    if (mFree.empty()) {
        if (mEntries.size() >= kMaxSlots) {
            throw std::bad_alloc();
        }
        mFree.reserve(mEntries.size() + 1); // reserved so that Remove never allocates
        mEntries.emplace_back();
        mFree.push_back(static_cast<std::uint32_t>(mEntries.size() - 1));
    }
    const std::uint32_t slot = mFree.back();
    mFree.pop_back();
    Entry& entry = mEntries[slot];
    entry.mKey = std::move(inKey);
    entry.mAccess = inAccess;
    const std::uintptr_t bits = static_cast<std::uintptr_t>(entry.mSerial) << kSerialShift
                                | static_cast<std::uintptr_t>(slot) << kSlotShift
                                | (mKind == StoreKind::kMachine ? 3u : 1u);
    return reinterpret_cast<Platform::KeyHandle>(bits);
}

bool HandleTable::Find(const HandleParts& inParts, StoredKey*& outKey, unsigned& outAccess) const noexcept
{
    if (inParts.mSlot >= mEntries.size()) {
        return false;
    }
    const Entry& entry = mEntries[inParts.mSlot];
    outKey = entry.mKey.get();
    outAccess = entry.mAccess;
    return outKey != nullptr && entry.mSerial == inParts.mSerial;
}

std::shared_ptr<StoredKey> HandleTable::Remove(const HandleParts& inParts) noexcept
{
    StoredKey* key = nullptr;
    unsigned access = 0;
    if (!Find(inParts, key, access)) {
        return nullptr;
    }
    Entry& entry = mEntries[inParts.mSlot];
    ++entry.mSerial;
    mFree.push_back(inParts.mSlot);
    return std::move(entry.mKey);
}

void HandleTable::Clear() noexcept
{
    mEntries = {};
    mFree = {};
}

} // namespace Linux
} // namespace Registry
} // namespace ORL
