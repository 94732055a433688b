#include <Strings/ImmutableStringTable.h>

#include <Memory/BadAllocation.h>
#include <ORLAllocator.h>
#include <Platform/PageMemory.h>

#include <atomic>
#include <boost/thread/once.hpp>
#include <cstring>
#include <new>
#include <utility>

namespace ORL {

namespace {

constexpr std::size_t kInitialSlots = 128; // the slots fill one page

// The process's table is created on first use and never destroyed. The pointer is atomic, so that every reader sees a
// complete table: sanitizers cannot detect the ordering that Boost's call_once guarantees.
alignas(ImmutableStringTable) unsigned char sTableStorage[sizeof(ImmutableStringTable)];
std::atomic<ImmutableStringTable*> sTable{nullptr};
boost::once_flag sTableOnce = BOOST_ONCE_INIT;

// Multiplies to 128 bits and XORs the halves, so that every bit of the operands affects every bit of the result.
inline std::uint64_t Mix(std::uint64_t inLeft, std::uint64_t inRight)
{
    __extension__ using Wide = unsigned __int128;
    const Wide product = static_cast<Wide>(inLeft) * inRight;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

inline std::uint64_t LoadWord(const unsigned char* inBytes)
{
    std::uint64_t word;
    std::memcpy(&word, inBytes, sizeof(word));
    return word;
}

constexpr std::uint64_t kFirst = 0x9E3779B97F4A7C15u;
constexpr std::uint64_t kSecond = 0xD1B54A32D192ED03u;

inline std::uint64_t MixSixteen(const unsigned char* inBytes, std::uint64_t inHash)
{
    return Mix(LoadWord(inBytes) ^ inHash, LoadWord(inBytes + 8) ^ kSecond);
}

std::uint64_t HashOfUpToSeven(const unsigned char* inText, std::size_t inSize, std::uint64_t inHash)
{
    std::uint64_t word = 0;
    std::memcpy(&word, inText, inSize);
    return Mix(word ^ inHash, kSecond);
}

std::uint64_t HashOfLongText(const unsigned char* inText, std::size_t inSize, std::uint64_t inHash)
{
    std::uint64_t hash = inHash;
    const unsigned char* const last = inText + inSize - 16;
    for (const unsigned char* at = inText; at < last; at += 16) {
        hash = MixSixteen(at, hash);
    }
    return MixSixteen(last, hash);
}

// The last step overlaps the previous step if the size is not a multiple of the step. Texts of up to 64 bytes therefore
// need at most three branches and no loop, whose unpredictable end would cost more than all the multiplications, which
// run in parallel.
std::uint64_t HashText(const unsigned char* inText, std::size_t inSize)
{
    const std::uint64_t hash = inSize ^ kFirst;
    const unsigned char* const end = inText + inSize;
    if (inSize <= 16) {
        return Mix(inSize >= 8 ? Mix(LoadWord(inText) ^ hash, LoadWord(end - 8) ^ kSecond)
                               : HashOfUpToSeven(inText, inSize, hash),
                   kFirst);
    }
    if (inSize > 64) {
        return Mix(HashOfLongText(inText, inSize, hash), kFirst);
    }
    std::uint64_t both = MixSixteen(inText, hash) ^ MixSixteen(end - 16, ~hash);
    if (inSize > 32) {
        both ^= MixSixteen(inText + 16, hash + kSecond) ^ MixSixteen(end - 32, hash - kSecond);
    }
    return Mix(both, kFirst);
}

struct ExitAction
{
    ~ExitAction() { sTable.load(std::memory_order_acquire)->FreeUnreferenced(); }
};

// Destroying the guard at process exit is safe: its destructor does nothing, or other threads have exited by then.
void MakeTable()
{
    static const CriticalSection guard;
    sTable.store(::new (sTableStorage) ImmutableStringTable(guard), std::memory_order_release);
    static const ExitAction exitAction;
}

} // namespace

ImmutableStringTable& ImmutableStringTable::Get()
{
    ImmutableStringTable* table = sTable.load(std::memory_order_acquire);
    if (table == nullptr) {
        boost::call_once(sTableOnce, &MakeTable);
        table = sTable.load(std::memory_order_acquire);
    }
    return *table;
}

ImmutableStringTable::~ImmutableStringTable()
{
    for (Record* const record : mRecords) {
        FreeRecord(record);
    }
}

ImmutableStringTable::Slots::Slots(std::size_t inCount)
    : mSlots(static_cast<Slot*>(PageMemory::Platform::AllocatePages_Impl(inCount * sizeof(Slot)))), mCount(inCount)
{
    if (mSlots == nullptr) {
        throw BadAllocation();
    }
}

ImmutableStringTable::Slots::~Slots()
{
    if (mSlots != nullptr) {
        PageMemory::Platform::FreePages_Impl(mSlots, mCount * sizeof(Slot));
    }
}

void ImmutableStringTable::Slots::Swap(Slots& ioOther) noexcept
{
    std::swap(mSlots, ioOther.mSlots);
    std::swap(mCount, ioOther.mCount);
}

ImmutableStringTable::Key ImmutableStringTable::KeyOf(const unsigned char* inText)
{
    const std::size_t size = std::strlen(reinterpret_cast<const char*>(inText));
    return Key{inText, size, HashText(inText, size)};
}

ImmutableStringTable::Record* ImmutableStringTable::Enter(const unsigned char* inText, Lifetime inLifetime)
{
    static constexpr unsigned char kEmpty[] = {0};
    const Key key = KeyOf(inText != nullptr ? inText : kEmpty);
    Record* const present = EnterAsReader(key);
    // For a null string, creates a dynamic record with an empty copy, even for a static name.
    return present != nullptr ? present : EnterUnderGuard(key, inText != nullptr ? inLifetime : Lifetime::kDynamic);
}

// Returns null if the name is not found or read access is not granted.
ImmutableStringTable::Record* ImmutableStringTable::EnterAsReader(const Key& inKey)
{
    const ReaderSlots::ReaderAccess access(mReaders);
    Record* const record = access.IsGranted() ? Find(inKey) : nullptr;
    if (record != nullptr) {
        record->AddRef();
    }
    return record;
}

ImmutableStringTable::Record* ImmutableStringTable::EnterUnderGuard(const Key& inKey, Lifetime inLifetime)
{
    const CriticalSectionLock lock(mGuard);
    Record* record = Find(inKey);
    if (record == nullptr) {
        record = Add(inKey, inLifetime);
    }
    record->AddRef();
    return record;
}

bool ImmutableStringTable::Purge()
{
    const CriticalSectionLock lock(mGuard);
    const ReaderSlots::WriterAccess writer(mReaders);
    return RemoveUnused(StaticRecords::kKeep);
}

// Excluded from clang's thread-safety analysis, which cannot track a try-lock.
void ImmutableStringTable::FreeUnreferenced() TVXCORE_UNCHECKED_LOCKING
{
    const CriticalSectionTryLock lock(mGuard);
    if (!lock.IsLocked()) {
        return;
    }
    const ReaderSlots::TryWriterAccess writer(mReaders);
    if (!writer.IsGranted()) {
        return;
    }
    RemoveUnused(StaticRecords::kRemove);
    if (mRecords.empty()) {
        Slots none;
        none.Swap(mIndex);
    }
}

std::size_t ImmutableStringTable::GetCount() const
{
    const CriticalSectionLock lock(mGuard);
    return mRecords.size();
}

ImmutableStringTable::Record* ImmutableStringTable::MakeRecord(const unsigned char* inText, Lifetime inLifetime)
{
    void* const memory = Allocator::Allocate(sizeof(Record));
    try {
        return inLifetime == Lifetime::kStatic ? ::new (memory) Record(inText)
                                               : ::new (memory) Record(inText, Record::Dynamic());
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

// Returns the slot where the search begins; it is even, because two slots fill a cache line.
std::size_t ImmutableStringTable::FirstSlotOf(const Slots& inIndex, std::uint64_t inHash)
{
    return inHash & (inIndex.Count() - 2);
}

// The caller must hold the guard or have ReaderAccess. A name is usually in one of the first two slots, but which one
// is unpredictable. The slot is selected without a branch, because a mispredicted branch costs more than reading both
// slots.
ImmutableStringTable::Record* ImmutableStringTable::Find(const Key& inKey) const
{
    if (mIndex.Count() == 0) {
        return nullptr;
    }
    const std::size_t firstSlot = FirstSlotOf(mIndex, inKey.mHash);
    const bool isSecond = mIndex[firstSlot].mHash.load(std::memory_order_relaxed) != inKey.mHash;
    Record* const record = RecordAt(mIndex[firstSlot + isSecond], inKey);
    return record != nullptr ? record : FindFrom(firstSlot, inKey);
}

ImmutableStringTable::Record* ImmutableStringTable::FindFrom(std::size_t inAt, const Key& inKey) const
{
    const std::size_t mask = mIndex.Count() - 1;
    for (std::size_t at = inAt; mIndex[at].mRecord.load(std::memory_order_acquire) != nullptr; at = (at + 1) & mask) {
        if (Record* const record = RecordAt(mIndex[at], inKey); record != nullptr) {
            return record;
        }
    }
    return nullptr;
}

ImmutableStringTable::Record* ImmutableStringTable::RecordAt(const Slot& inSlot, const Key& inKey)
{
    Record* const record = inSlot.mRecord.load(std::memory_order_acquire);
    if (record == nullptr || inSlot.mHash.load(std::memory_order_relaxed) != inKey.mHash
        || inSlot.mSize != inKey.mSize) {
        return nullptr;
    }
    __builtin_prefetch(record, 1); // for writing: the caller increments the record's count
    return std::memcmp(inSlot.mText, inKey.mText, inKey.mSize) == 0 ? record : nullptr;
}

// Does everything that may throw before the first visible change.
ImmutableStringTable::Record* ImmutableStringTable::Add(const Key& inKey, Lifetime inLifetime)
{
    GrowIndexIfNeeded();
    Record* const record = MakeRecord(inKey.mText, inLifetime);
    try {
        mRecords.insert(record);
    } catch (...) {
        FreeRecord(record);
        throw;
    }
    AddToIndex(mIndex, record, inKey);
    return record;
}

void ImmutableStringTable::GrowIndexIfNeeded()
{
    if ((mRecords.size() + 1) * 2 <= mIndex.Count()) {
        return;
    }
    Slots larger(mIndex.Count() == 0 ? kInitialSlots : mIndex.Count() * 2);
    for (const Slot& slot : mIndex) {
        if (Record* const record = slot.mRecord.load(std::memory_order_relaxed); record != nullptr) {
            AddToIndex(larger, record, Key{slot.mText, slot.mSize, slot.mHash.load(std::memory_order_relaxed)});
        }
    }
    const ReaderSlots::WriterAccess writer(mReaders);
    larger.Swap(mIndex);
}

void ImmutableStringTable::AddToIndex(const Slots& ioIndex, Record* inRecord, const Key& inKey)
{
    const std::size_t mask = ioIndex.Count() - 1;
    std::size_t at = FirstSlotOf(ioIndex, inKey.mHash);
    while (ioIndex[at].mRecord.load(std::memory_order_relaxed) != nullptr) {
        at = (at + 1) & mask;
    }
    Slot& slot = ioIndex[at];
    slot.mText = inRecord->Text();
    slot.mSize = inKey.mSize;
    slot.mHash.store(inKey.mHash, std::memory_order_relaxed);
    slot.mRecord.store(inRecord, std::memory_order_release);
}

// The caller must hold the guard and exclude readers. Returns true if a record was removed.
bool ImmutableStringTable::RemoveUnused(StaticRecords inStaticRecords)
{
    bool removed = false;
    for (Records::iterator i = mRecords.begin(); i != mRecords.end();) {
        Record* const record = *i;
        if ((record->IsStatic() && inStaticRecords == StaticRecords::kKeep) || record->CountOfHandles() != 0) {
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

// Works in place, so that a purge needs no memory.
void ImmutableStringTable::RebuildIndex()
{
    for (Slot& slot : mIndex) {
        slot.mRecord.store(nullptr, std::memory_order_relaxed);
    }
    for (Record* const record : mRecords) {
        AddToIndex(mIndex, record, KeyOf(record->Text()));
    }
}

} // namespace ORL
