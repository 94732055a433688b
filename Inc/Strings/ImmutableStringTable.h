// The process's table of interned strings.
#pragma once

#include <ORLCriticalSection.h>
#include <Strings/ImmutableStringRecord.h>
#include <Strings/ReaderSlots.h>
#include <tvxcore/SmallBlockAllocator.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <set>

namespace ORL {

/// An ordered set of records, with a hash index that finds strings without searching the set: with a million strings
/// the search costs twenty cache misses, the index one or two.
///
/// Locking: a thread that adds or removes a record holds mGuard. A search for a string that is present needs only read
/// access (ReaderSlots). The table excludes readers before it frees a record or index entry that they may access.
/// A purge holds mGuard and excludes readers, so no other thread can find a record then, and a handle count of 0
/// stays 0.
class ImmutableStringTable
{
public:
    using Record = ImmutableString::InternalRepresentation;

    /// A static record refers to the caller's string and survives Purge; a dynamic one has a copy of its string.
    enum class Lifetime { kStatic, kDynamic };

    /// The guard lives as long as the table.
    explicit ImmutableStringTable(const CriticalSection& inGuard) : mGuard(inGuard) {}

    /// Frees all records, even those with handles. Never runs for the process's own table.
    ~ImmutableStringTable();

    ImmutableStringTable(const ImmutableStringTable&) = delete;
    ImmutableStringTable& operator=(const ImmutableStringTable&) = delete;

    /// Returns the record of a string (null: the empty one), with one handle counted; creates it if missing. May throw
    /// std::bad_alloc; in that case nothing has changed.
    Record* Enter(const unsigned char* inText, Lifetime inLifetime);

    /// Removes the dynamic records without handles. Returns whether it removed any.
    bool Purge();

    /// For process exit and unload: frees the records without handles, static ones too, and the index if no record is
    /// left. Referenced records stay valid and the table stays usable, since threads may still use it. Never waits,
    /// since a thread that the system has stopped may hold the guard: if the table is in use, frees nothing. On
    /// unload the table is not in use.
    void FreeUnreferenced();

    /// Returns the number of records in the table.
    std::size_t GetCount() const;

    /// Returns the process's table; the first call creates it.
    static ImmutableStringTable& Get();

private:
    enum class StaticRecords { kKeep, kRemove };

    struct ByText
    {
        bool operator()(const Record* inLeft, const Record* inRight) const
        {
            return CompareBytes(inLeft->Text(), inRight->Text()) < 0;
        }
    };

    template <class T>
    using SmallBlocks = tvxcore::utility::SmallBlockAllocator::STLAllocator<T>;
    using Records = std::set<Record*, ByText, SmallBlocks<Record*>>;

    /// A string to search for.
    struct Key
    {
        const unsigned char* mText;
        std::size_t mSize;
        std::uint64_t mHash;
    };

    /// A slot of the index, a hash table with linear probing whose size is a power of two; at most half full.
    /// The slot holds the string's address, so that comparing need not access the record. A slot takes half a cache
    /// line; a search begins at the first of the two slots of a line.
    struct alignas(32) Slot
    {
        const unsigned char* mText;
        std::size_t mSize;
        std::atomic<std::uint64_t> mHash; // readers may read it before mRecord
        std::atomic<Record*> mRecord;     // null in a free slot; stored last: publishes the other fields
    };

    /// The slots, in whole pages from the system: initially zero, and large tables may get huge pages.
    class Slots
    {
    public:
        Slots() = default;
        explicit Slots(std::size_t inCount);
        ~Slots();
        Slots(const Slots&) = delete;
        Slots& operator=(const Slots&) = delete;

        void Swap(Slots& ioOther) noexcept;
        std::size_t Count() const noexcept { return mCount; }
        Slot& operator[](std::size_t inAt) const noexcept { return mSlots[inAt]; }
        Slot* begin() const noexcept { return mSlots; }
        Slot* end() const noexcept { return mSlots + mCount; }

    private:
        Slot* mSlots = nullptr;
        std::size_t mCount = 0;
    };

    static Key KeyOf(const unsigned char* inText);
    static std::size_t FirstSlotOf(const Slots& inIndex, std::uint64_t inHash);
    static Record* MakeRecord(const unsigned char* inText, Lifetime inLifetime);
    static void FreeRecord(Record* inRecord);

    Record* EnterAsReader(const Key& inKey);
    Record* EnterUnderGuard(const Key& inKey, Lifetime inLifetime);
    Record* Find(const Key& inKey) const;
    Record* FindFrom(std::size_t inAt, const Key& inKey) const;
    static Record* RecordAt(const Slot& inSlot, const Key& inKey);
    Record* Add(const Key& inKey, Lifetime inLifetime) TVXCORE_REQUIRES(mGuard);
    void GrowIndexIfNeeded() TVXCORE_REQUIRES(mGuard);
    static void AddToIndex(const Slots& ioIndex, Record* inRecord, const Key& inKey);
    bool RemoveUnused(StaticRecords inStaticRecords) TVXCORE_REQUIRES(mGuard);
    void RebuildIndex() TVXCORE_REQUIRES(mGuard);

    const CriticalSection& mGuard;
    Records mRecords TVXCORE_GUARDED_BY(mGuard);
    Slots mIndex; // changed under the guard; readers may read its slots
    ReaderSlots mReaders;
};

} // namespace ORL
