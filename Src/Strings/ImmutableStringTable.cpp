#include <ImmutableStringTable.h>

#include <BadAllocation.h>
#include <ORLAllocator.h>
#include <Platform/PageMemory.h>

#include <atomic>
#include <boost/thread/once.hpp>
#include <cstring>
#include <new>
#include <utility>

namespace ORL {

namespace {

constexpr std::size_t kFirstPlaces = 128; // a page of them

// The process's table lives in static storage from its first use to the process's exit actions. The pointer is atomic,
// so that whoever reads it sees the table that it leads to: how the once-only call orders this is Boost's own, where no
// sanitizer looks.
std::atomic<ImmutableStringTable*> sTable{nullptr};
boost::once_flag sTableOnce = BOOST_ONCE_INIT;

// Multiplies to 128 bits and folds the halves: every bit of the operands reaches every bit of the result.
inline std::uint64_t Mix(std::uint64_t inLeft, std::uint64_t inRight)
{
    __extension__ using Wide = unsigned __int128;
    const Wide product = static_cast<Wide>(inLeft) * inRight;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

inline std::uint64_t LoadWord(const unsigned char* inBytes, std::size_t inSize)
{
    std::uint64_t word = 0;
    std::memcpy(&word, inBytes, inSize);
    return word;
}

// Two words a step. It takes a third of the time of the standard library's hash, and half of a hit was that hash.
std::uint64_t HashText(const unsigned char* inText)
{
    constexpr std::uint64_t kFirst = 0x9E3779B97F4A7C15u;
    constexpr std::uint64_t kSecond = 0xD1B54A32D192ED03u;
    const std::size_t size = std::strlen(reinterpret_cast<const char*>(inText));
    std::uint64_t hash = size ^ kFirst;
    const unsigned char* at = inText;
    std::size_t left = size;
    for (; left >= 16; at += 16, left -= 16) {
        hash = Mix(LoadWord(at, 8) ^ hash, LoadWord(at + 8, 8) ^ kSecond);
    }
    if (left >= 8) {
        hash = Mix(LoadWord(at, 8) ^ hash, LoadWord(at + left - 8, 8) ^ kSecond);
    } else if (left != 0) {
        hash = Mix(LoadWord(at, left) ^ hash, kSecond);
    }
    return Mix(hash, kFirst);
}

void MakeTable()
{
    static ImmutableStringTable table;
    sTable.store(&table, std::memory_order_release);
}

} // namespace

ImmutableStringTable& ImmutableStringTable::Get()
{
    boost::call_once(sTableOnce, &MakeTable);
    return *sTable.load(std::memory_order_acquire);
}

ImmutableStringTable::~ImmutableStringTable()
{
    for (Record* const record : mRecords) {
        if (record->CountOfHandles() == 0) {
            FreeRecord(record);
        } else {
            record->~InternalRepresentation();
        }
    }
}

ImmutableStringTable::Places::Places(std::size_t inCount)
    : mPlaces(static_cast<Place*>(PageMemory::Platform::AllocatePages_Impl(inCount * sizeof(Place)))), mCount(inCount)
{
    if (mPlaces == nullptr) {
        throw BadAllocation();
    }
}

ImmutableStringTable::Places::~Places()
{
    if (mPlaces != nullptr) {
        PageMemory::Platform::FreePages_Impl(mPlaces, mCount * sizeof(Place));
    }
}

void ImmutableStringTable::Places::Swap(Places& ioOther) noexcept
{
    std::swap(mPlaces, ioOther.mPlaces);
    std::swap(mCount, ioOther.mCount);
}

ImmutableStringTable::Record* ImmutableStringTable::Enter(const unsigned char* inText, bool inIsStatic)
{
    static constexpr unsigned char kEmpty[] = {0};
    const unsigned char* const key = inText != nullptr ? inText : kEmpty;
    const std::uint64_t hash = HashText(key);
    const CriticalSectionLock lock(mGuard);
    Record* record = Find(key, hash);
    if (record == nullptr) {
        // An empty text without a pointer makes the same record whatever the kind: one with an empty copy.
        record = Add(key, inIsStatic && inText != nullptr, hash);
    }
    record->AddRef();
    return record;
}

bool ImmutableStringTable::Purge()
{
    const CriticalSectionLock lock(mGuard);
    bool removed = false;
    for (Records::iterator i = mRecords.begin(); i != mRecords.end();) {
        Record* const record = *i;
        if (record->IsStatic() || record->CountOfHandles() != 0) {
            ++i;
            continue;
        }
        i = mRecords.erase(i);
        FreeRecord(record);
        removed = true;
    }
    if (removed) {
        RebuildIndex();
    }
    return removed;
}

std::size_t ImmutableStringTable::GetCount() const
{
    const CriticalSectionLock lock(mGuard);
    return mRecords.size();
}

ImmutableStringTable::Record* ImmutableStringTable::MakeRecord(const unsigned char* inText, bool inIsStatic)
{
    void* const memory = Allocator::Allocate(sizeof(Record));
    try {
        return inIsStatic ? ::new (memory) Record(inText) : ::new (memory) Record(inText, Record::Dynamic());
    } catch (...) {
        Allocator::Dispose(memory, sizeof(Record));
        throw;
    }
}

void ImmutableStringTable::FreeRecord(Record* inRecord)
{
    inRecord->~InternalRepresentation();
    Allocator::Dispose(inRecord, sizeof(Record));
}

ImmutableStringTable::Record* ImmutableStringTable::Find(const unsigned char* inText, std::uint64_t inHash) const
{
    if (mIndex.Count() == 0) {
        return nullptr;
    }
    const std::size_t mask = mIndex.Count() - 1;
    for (std::size_t at = inHash & mask; mIndex[at].mRecord != nullptr; at = (at + 1) & mask) {
        const Place& place = mIndex[at];
        if (place.mHash != inHash) {
            continue;
        }
        __builtin_prefetch(place.mRecord, 1); // its count is changed next; fetched while the texts are compared
        if (CompareBytes(place.mText, inText) == 0) {
            return place.mRecord;
        }
    }
    return nullptr;
}

// What may throw comes before the first change that shows.
ImmutableStringTable::Record* ImmutableStringTable::Add(const unsigned char* inText, bool inIsStatic,
                                                        std::uint64_t inHash)
{
    MakeRoomInIndex();
    Record* const record = MakeRecord(inText, inIsStatic);
    try {
        mRecords.insert(record);
    } catch (...) {
        FreeRecord(record);
        throw;
    }
    AddToIndex(record, inHash);
    return record;
}

void ImmutableStringTable::MakeRoomInIndex()
{
    if ((mRecords.size() + 1) * 2 <= mIndex.Count()) {
        return;
    }
    Places places(mIndex.Count() == 0 ? kFirstPlaces : mIndex.Count() * 2);
    places.Swap(mIndex);
    for (const Place& place : places) {
        if (place.mRecord != nullptr) {
            AddToIndex(place.mRecord, place.mHash);
        }
    }
}

void ImmutableStringTable::AddToIndex(Record* inRecord, std::uint64_t inHash)
{
    const std::size_t mask = mIndex.Count() - 1;
    std::size_t at = inHash & mask;
    while (mIndex[at].mRecord != nullptr) {
        at = (at + 1) & mask;
    }
    mIndex[at].mHash = inHash;
    mIndex[at].mRecord = inRecord;
    mIndex[at].mText = inRecord->Text();
}

// In place, so that a purge needs no memory.
void ImmutableStringTable::RebuildIndex()
{
    for (Place& place : mIndex) {
        place = Place();
    }
    for (Record* const record : mRecords) {
        AddToIndex(record, HashText(record->Text()));
    }
}

} // namespace ORL
