#include "LinuxRegistryValueTable.h"

#include <cstring>
#include <new>
#include <utility>

namespace ORL {
namespace Registry {
namespace Linux {

namespace {

constexpr std::size_t kFirstSlots = 8;

void Copy(void* outTo, const void* inFrom, std::size_t inSize) noexcept
{
    if (inSize != 0) { // inFrom may be null if inSize is 0
        std::memcpy(outTo, inFrom, inSize);
    }
}

} // namespace

void StoredValue::Free::operator()(StoredValue* inValue) const noexcept
{
    inValue->~StoredValue();
    ::operator delete(inValue);
}

StoredValue::Ptr StoredValue::Make(UnitsView inFolded, UnitsView inName, const ValueData& inData)
{
    const std::size_t offset = NameOffset(inFolded.size(), inData.mSize);
    void* const block = ::operator new(sizeof(StoredValue) + offset + inName.size() * sizeof(unsigned short));
    Ptr value(::new (block) StoredValue);
    value->mType = inData.mType;
    value->mSize = static_cast<std::uint32_t>(inData.mSize);
    value->mFoldedUnits = static_cast<std::uint32_t>(inFolded.size());
    value->mNameUnits = static_cast<std::uint32_t>(inName.size()) & 0x7FFFFFFFu;
    value->mIsStale = false;
    unsigned char* const begin = value->Begin();
    Copy(begin, inFolded.data(), inFolded.size() * sizeof(unsigned short));
    Copy(begin + inFolded.size() * sizeof(unsigned short), inData.mBytes, inData.mSize);
    Copy(begin + offset, inName.data(), inName.size() * sizeof(unsigned short));
    return value;
}

bool StoredValue::Assign(const ValueData& inData) noexcept
{
    if (inData.mSize != mSize) {
        return false;
    }
    mType = inData.mType;
    Copy(Begin() + mFoldedUnits * sizeof(unsigned short), inData.mBytes, inData.mSize);
    return true;
}

// Returns the slot with that name, or the empty slot that ends the search. The table must have slots.
std::size_t ValueTable::FindSlot(std::uint64_t inHash, UnitsView inFolded) const noexcept
{
    std::size_t slot = Home(inHash);
    while (mSlots[slot].mValue != nullptr
           && (mSlots[slot].mHash != inHash || mSlots[slot].mValue->Folded() != inFolded)) {
        slot = Next(slot);
    }
    return slot;
}

StoredValue* ValueTable::Find(std::uint64_t inHash, UnitsView inFolded) const noexcept
{
    return mSlots.empty() ? nullptr : mSlots[FindSlot(inHash, inFolded)].mValue.get();
}

StoredValue& ValueTable::Put(std::uint64_t inHash, StoredValue::Ptr inValue)
{
    if ((mCount + 1) * 4 > mSlots.size() * 3) {
        Grow();
    }
    Slot& slot = mSlots[FindSlot(inHash, inValue->Folded())];
    mCount += slot.mValue == nullptr ? 1 : 0;
    slot.mHash = inHash;
    slot.mValue = std::move(inValue);
    return *slot.mValue;
}

void ValueTable::Grow()
{
    std::vector<Slot> slots(mSlots.empty() ? kFirstSlots : mSlots.size() * 2);
    slots.swap(mSlots); // now slots contains the previous slots
    for (Slot& slot : slots) {
        if (slot.mValue != nullptr) {
            mSlots[FindSlot(slot.mHash, slot.mValue->Folded())] = std::move(slot);
        }
    }
}

// Moves later values of the probe sequence into the gap, so that a search for them does not end there.
void ValueTable::Erase(std::uint64_t inHash, UnitsView inFolded) noexcept
{
    if (Find(inHash, inFolded) == nullptr) {
        return;
    }
    std::size_t gap = FindSlot(inHash, inFolded);
    mSlots[gap].mValue.reset();
    --mCount;
    for (std::size_t slot = Next(gap); mSlots[slot].mValue != nullptr; slot = Next(slot)) {
        const std::size_t mask = mSlots.size() - 1;
        const std::size_t home = Home(mSlots[slot].mHash);
        if (((slot - home) & mask) >= ((slot - gap) & mask)) {
            mSlots[gap] = std::move(mSlots[slot]);
            gap = slot;
        }
    }
}

void ValueTable::SetStale(std::uint64_t inHash) noexcept
{
    if (mSlots.empty()) {
        return;
    }
    for (std::size_t slot = Home(inHash); mSlots[slot].mValue != nullptr; slot = Next(slot)) {
        if (mSlots[slot].mHash == inHash) {
            mSlots[slot].mValue->SetStale();
        }
    }
}

void ValueTable::Clear() noexcept
{
    ValueTable().Swap(*this);
}

void ValueTable::Swap(ValueTable& ioOther) noexcept
{
    mSlots.swap(ioOther.mSlots);
    std::swap(mCount, ioOther.mCount);
}

std::vector<const StoredValue*> ValueTable::List() const
{
    std::vector<const StoredValue*> values;
    values.reserve(mCount);
    for (const Slot& slot : mSlots) {
        if (slot.mValue != nullptr) {
            values.push_back(slot.mValue.get());
        }
    }
    return values;
}

} // namespace Linux
} // namespace Registry
} // namespace ORL
