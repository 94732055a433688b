// Floor: Strings
// The process's table of interned texts.
#pragma once

#include <ImmutableStringRecord.h>
#include <ORLCriticalSection.h>
#include <SharedVisits.h>
#include <tvxcore/SmallBlockAllocator.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <set>

namespace ORL {

/// An ordered set of records, with a hash index that finds texts without a search of the set: with a million texts the
/// search costs twenty cache misses, the index one or two.
///
/// Locking: a thread that adds or removes a record holds mGuard. A search for a text that is present needs only a visit
/// (SharedVisits). The table excludes visitors before it frees a record or index entry that they may access. So only a
/// thread that holds the guard can find a record whose count is 0 again, and a purge reads the counts while no visitor
/// can find the records.
class ImmutableStringTable
{
public:
    using Record = ImmutableString::InternalRepresentation;

    /// The guard lives as long as the table.
    explicit ImmutableStringTable(const CriticalSection& inGuard) : mGuard(inGuard) {}

    /// Frees all records, even those with handles. Never runs for the process's own table.
    ~ImmutableStringTable();

    ImmutableStringTable(const ImmutableStringTable&) = delete;
    ImmutableStringTable& operator=(const ImmutableStringTable&) = delete;

    /// Returns the record of a text (null: the empty text), with one handle counted; creates it if missing. May throw
    /// std::bad_alloc; in that case nothing has changed.
    Record* Enter(const unsigned char* inText, bool inIsStatic);

    /// Removes the dynamic records without handles. Returns whether it removed any.
    bool Purge();

    /// For process exit and unload: frees the records without handles, static ones too, and the index if no record is
    /// left. Referenced records stay valid and the table stays usable, since threads may still use it. Never waits,
    /// since the guard may belong to a thread that the system has stopped: if the table is in use, frees nothing. On
    /// unload the table is not in use.
    void FreeWhatNobodyHolds();

    /// Returns the number of records in the table.
    std::size_t GetCount() const;

    /// Returns the process's table; the first call creates it.
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

    /// A text to search for.
    struct Key
    {
        const unsigned char* mText;
        std::size_t mSize;
        std::uint64_t mHash;
    };

    /// One slot of the index: open addressing, linear probing, a power of two of slots, at most half of them in use. It
    /// holds the text's address, so that a hit need not access the record. The size is half a cache line; a search
    /// begins at the first of the two slots of a line.
    struct alignas(32) Place
    {
        const unsigned char* mText;
        std::size_t mSize;
        std::atomic<std::uint64_t> mHash; // may be read before mRecord
        std::atomic<Record*> mRecord;     // null in a free slot; stored last: publishes the other fields
    };

    /// The slots, in whole pages from the system: initially zero, and large tables may get huge pages.
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

    static Key KeyOf(const unsigned char* inText);
    static std::size_t HomeOf(const Places& inIndex, std::uint64_t inHash);
    static Record* MakeRecord(const unsigned char* inText, bool inIsStatic);
    static void FreeRecord(Record* inRecord);

    Record* EnterAsVisitor(const Key& inKey);
    Record* EnterUnderGuard(const Key& inKey, bool inIsStatic);
    Record* Find(const Key& inKey) const;
    Record* FindFrom(std::size_t inAt, const Key& inKey) const;
    static Record* RecordAt(const Place& inPlace, const Key& inKey);
    Record* Add(const Key& inKey, bool inIsStatic) TVXCORE_REQUIRES(mGuard);
    void MakeRoomInIndex() TVXCORE_REQUIRES(mGuard);
    static void AddToIndex(const Places& ioIndex, Record* inRecord, const Key& inKey);
    bool RemoveUnused(bool inStaticToo) TVXCORE_REQUIRES(mGuard);
    void RebuildIndex() TVXCORE_REQUIRES(mGuard);

    const CriticalSection& mGuard;
    Records mRecords TVXCORE_GUARDED_BY(mGuard);
    Places mIndex; // changed under the guard; visits may read its slots
    SharedVisits mVisits;
};

} // namespace ORL
