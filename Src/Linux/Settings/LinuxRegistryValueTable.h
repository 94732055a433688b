// Floor: System
// An in-memory table of the values of a key, indexed by folded name.
//
// A key can have thousands of values, and reads arrive in any order, so cache misses dominate the cost of a read. The
// index is therefore flat, and each value is one block of memory that contains its folded name and its data.
//
// Not thread-safe; the store locks the table.
#pragma once

#include "LinuxRegistryNames.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace ORL {
namespace Registry {
namespace Linux {

/// The type and the bytes of a value. Does not own the bytes.
struct ValueData
{
    unsigned mType = 0;
    const void* mBytes = nullptr;
    std::size_t mSize = 0;
};

/// The header of a block of memory; the folded name, the data and the name follow the header.
class StoredValue
{
public:
    struct Free
    {
        void operator()(StoredValue* inValue) const noexcept;
    };
    using Ptr = std::unique_ptr<StoredValue, Free>;

    /// Throws std::bad_alloc.
    static Ptr Make(UnitsView inFolded, UnitsView inName, const ValueData& inData);

    unsigned Type() const noexcept { return mType; }
    std::uint32_t Size() const noexcept { return mSize; }
    const unsigned char* Bytes() const noexcept { return Begin() + mFoldedUnits * sizeof(unsigned short); }
    UnitsView Folded() const noexcept { return UnitsAt(0, mFoldedUnits); }
    UnitsView Name() const noexcept { return UnitsAt(NameOffset(mFoldedUnits, mSize), mNameUnits); }

    /// Replaces type and data and returns true if the new data is as large as the old; otherwise changes nothing.
    bool Assign(const ValueData& inData) noexcept;

    /// Returns whether the database may contain a newer value.
    bool IsStale() const noexcept { return mIsStale; }
    void SetStale() noexcept { mIsStale = true; }

private:
    StoredValue() = default;

    // Returns an even number, so that the name is aligned.
    static std::size_t NameOffset(std::size_t inFoldedUnits, std::size_t inSize) noexcept
    {
        return inFoldedUnits * sizeof(unsigned short) + ((inSize + 1) & ~std::size_t{1});
    }

    const unsigned char* Begin() const noexcept { return reinterpret_cast<const unsigned char*>(this + 1); }
    unsigned char* Begin() noexcept { return reinterpret_cast<unsigned char*>(this + 1); }
    UnitsView UnitsAt(std::size_t inOffset, std::size_t inCount) const noexcept
    {
        return UnitsView(reinterpret_cast<const unsigned short*>(Begin() + inOffset), inCount);
    }

    std::uint32_t mType = 0;
    std::uint32_t mSize = 0; // size of the data in bytes
    std::uint32_t mFoldedUnits = 0;
    std::uint32_t mNameUnits : 31;
    std::uint32_t mIsStale : 1;
};

/// A hash table with open addressing and linear probing. At most three quarters of the slots are in use.
class ValueTable
{
public:
    /// Returns null if there is no value with that name.
    StoredValue* Find(std::uint64_t inHash, UnitsView inFolded) const noexcept;

    /// Adds a value, or replaces the one with the same folded name. inHash is the hash of the folded name. May throw
    /// std::bad_alloc; in that case the table is unchanged.
    StoredValue& Put(std::uint64_t inHash, StoredValue::Ptr inValue);

    void Erase(std::uint64_t inHash, UnitsView inFolded) noexcept;

    /// Marks as stale all values whose folded names have that hash.
    void SetStale(std::uint64_t inHash) noexcept;

    void Clear() noexcept;
    void Swap(ValueTable& ioOther) noexcept;

    /// Returns all values, in unspecified order.
    std::vector<const StoredValue*> List() const;

private:
    struct Slot
    {
        std::uint64_t mHash = 0;
        StoredValue::Ptr mValue; // null in an empty slot
    };

    std::size_t Next(std::size_t inSlot) const noexcept { return (inSlot + 1) & (mSlots.size() - 1); }
    std::size_t Home(std::uint64_t inHash) const noexcept { return inHash & (mSlots.size() - 1); }
    std::size_t FindSlot(std::uint64_t inHash, UnitsView inFolded) const noexcept;
    void Grow();

    std::vector<Slot> mSlots; // the number of slots is 0 or a power of two
    std::size_t mCount = 0;
};

} // namespace Linux
} // namespace Registry
} // namespace ORL
