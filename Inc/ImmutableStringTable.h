// Floor: Strings
// The process's one table of interned texts.
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

/// An ordered set of records, and beside it an index by hash through which a text that is present is found without walking
/// the set: at a million texts the walk costs twenty cache misses, the index one or two.
///
/// The guard has two sides. Whoever adds or removes a record holds mGuard. A search that finds its text needs no more than a
/// visit; whatever would take a record or a place of the index away from under a visitor shuts the visitors out first. So a
/// record whose count is 0 is found again under the guard alone, and a purge reads the counts while nobody can find them.
class ImmutableStringTable
{
public:
    using Record = ImmutableString::InternalRepresentation;

    /// The guard lives as long as the table.
    explicit ImmutableStringTable(const CriticalSection& inGuard) : mGuard(inGuard) {}

    /// Frees all records, whatever their counts. The process's own table never comes to this.
    ~ImmutableStringTable();

    ImmutableStringTable(const ImmutableStringTable&) = delete;
    ImmutableStringTable& operator=(const ImmutableStringTable&) = delete;

    /// The record of a text (null: the empty text), made if need be, with one handle counted. Throws std::bad_alloc with
    /// nothing changed.
    Record* Enter(const unsigned char* inText, bool inIsStatic);

    /// Removes the dynamic records without handles. True if there was one.
    bool Purge();

    /// At process exit and when the library is unloaded: frees the records without handles, static ones too, and the index
    /// where none is left. What is held stays whole, and the table works on, since a thread that nobody has stopped may be
    /// using it to the end. Waits for nobody, since a thread that the system has ended may have left the guard taken;
    /// where somebody is at work in the table, all stays. When the library is unloaded nobody is.
    void FreeWhatNobodyHolds();

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

    /// A text to look for.
    struct Key
    {
        const unsigned char* mText;
        std::size_t mSize;
        std::uint64_t mHash;
    };

    /// One place of the index: open addressing, linear probing, a power of two of places, at most half of them taken. The
    /// text's address stands here so that a hit does not have to go through the record to reach it. Half a memory line: a
    /// search begins at the first of the two places of one.
    struct alignas(32) Place
    {
        const unsigned char* mText;
        std::size_t mSize;
        std::atomic<std::uint64_t> mHash; // may be looked at before mRecord
        std::atomic<Record*> mRecord;     // null in a free place; stored last, so that a visitor finds the others written
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

    static Key KeyOf(const unsigned char* inText);
    static std::size_t HomeOf(const Places& inIndex, std::uint64_t inHash);
    static Record* MakeRecord(const unsigned char* inText, bool inIsStatic);
    static void FreeRecord(Record* inRecord);

    Record* EnterAsVisitor(const Key& inKey);
    Record* EnterUnderGuard(const Key& inKey, bool inIsStatic);
    Record* Find(const Key& inKey) const;
    Record* FindFrom(std::size_t inAt, const Key& inKey) const;
    static Record* RecordAt(const Place& inPlace, const Key& inKey);
    Record* Add(const Key& inKey, bool inIsStatic);
    void MakeRoomInIndex();
    static void AddToIndex(const Places& ioIndex, Record* inRecord, const Key& inKey);
    bool RemoveUnused(bool inStaticToo);
    void RebuildIndex();

    const CriticalSection& mGuard; // guards all below
    Records mRecords;
    Places mIndex; // its places may be read in a visit
    SharedVisits mVisits;
};

} // namespace ORL
