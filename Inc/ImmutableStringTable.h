// Floor: Strings
// The process's one table of interned texts.
#pragma once

#include <ImmutableStringRecord.h>
#include <ORLCriticalSection.h>
#include <tvxcore/SmallBlockAllocator.h>

#include <cstddef>
#include <cstdint>
#include <set>

namespace ORL {

/// An ordered set of records, and beside it an index by hash through which a text that is present is found without walking
/// the set: at a million texts the walk costs twenty cache misses, the index one or two.
class ImmutableStringTable
{
public:
    using Record = ImmutableString::InternalRepresentation;

    ImmutableStringTable() = default;

    /// At process exit. A record that a handle still points to loses its text, but its memory is not given back: another
    /// thread may be counting in it to the end.
    ~ImmutableStringTable();

    ImmutableStringTable(const ImmutableStringTable&) = delete;
    ImmutableStringTable& operator=(const ImmutableStringTable&) = delete;

    /// The record of a text (null: the empty text), made if need be, with one handle counted. Throws std::bad_alloc with
    /// nothing changed.
    Record* Enter(const unsigned char* inText, bool inIsStatic);

    /// Removes the dynamic records without handles. True if there was one.
    bool Purge();

    /// The records now in the table.
    std::size_t GetCount() const;

    /// The process's table, made on first use.
    static ImmutableStringTable& Get();

private:
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

    /// One place of the index: open addressing, linear probing, a power of two of places, at most half of them taken. The
    /// text's address stands here so that a hit does not have to go through the record to reach it. Half a cache line, and
    /// none lies across two.
    struct alignas(32) Place
    {
        std::uint64_t mHash;
        Record* mRecord; // null in a free place
        const unsigned char* mText;
    };

    /// The places, in whole pages of the system: they begin zeroed, and a great many of them may have huge pages.
    class Places
    {
    public:
        Places() = default;
        explicit Places(std::size_t inCount);
        ~Places();
        Places(const Places&) = delete;
        Places& operator=(const Places&) = delete;

        void Swap(Places& ioOther) noexcept;
        std::size_t Count() const noexcept { return mCount; }
        Place& operator[](std::size_t inAt) const noexcept { return mPlaces[inAt]; }
        Place* begin() const noexcept { return mPlaces; }
        Place* end() const noexcept { return mPlaces + mCount; }

    private:
        Place* mPlaces = nullptr;
        std::size_t mCount = 0;
    };

    static Record* MakeRecord(const unsigned char* inText, bool inIsStatic);
    static void FreeRecord(Record* inRecord);

    Record* Find(const unsigned char* inText, std::uint64_t inHash) const;
    Record* Add(const unsigned char* inText, bool inIsStatic, std::uint64_t inHash);
    void MakeRoomInIndex();
    void AddToIndex(Record* inRecord, std::uint64_t inHash);
    void RebuildIndex();

    CriticalSection mGuard; // guards all below
    Records mRecords;
    Places mIndex;
};

} // namespace ORL
