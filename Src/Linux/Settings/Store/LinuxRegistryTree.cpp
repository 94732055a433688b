#include "LinuxRegistryTree.h"

#include "LinuxRegistryDatabase.h"

#include <algorithm>
#include <utility>

namespace ORL {
namespace Registry {
namespace Linux {

using namespace SystemErrors;

namespace {

bool ComesBefore(const SubKeyRow& inLeft, const SubKeyRow& inRight)
{
    return inLeft.mFolded < inRight.mFolded;
}

constexpr unsigned short kSoftwareFolded[] = {'S', 'O', 'F', 'T', 'W', 'A', 'R', 'E', 0};
constexpr unsigned short kSoftwareName[] = {'S', 'o', 'f', 't', 'w', 'a', 'r', 'e', 0};

// Reads the subkeys of a key, sorted. Skips rows that no version of the library writes.
SystemError ReadSubKeys(std::int64_t inKey, Database* ioDatabase, std::vector<SubKeyRow>& outRows)
{
    if (ioDatabase == nullptr) {
        if (inKey == kRootKey) {
            outRows.push_back({kSoftwareKey, kSoftwareFolded, kSoftwareName});
        }
        return kNoError;
    }
    Statement query(*ioDatabase, Database::kSelectSubKeys);
    query.Bind(1, inKey);
    while (query.Step()) {
        SubKeyRow row;
        row.mId = query.Number(0);
        query.Text(1, row.mFolded);
        query.Text(2, row.mName);
        if (!row.mFolded.empty() && !row.mName.empty() && row.mId > kRootKey) {
            outRows.push_back(std::move(row));
        }
    }
    std::sort(outRows.begin(), outRows.end(), &ComesBefore);
    return query.Error();
}

// Reads the value from a row of kSelectValues.
StoredValue::Ptr ReadValue(Statement& inRow)
{
    Units folded;
    Units name;
    inRow.Text(0, folded);
    inRow.Text(1, name);
    ValueData data;
    data.mType = static_cast<unsigned>(inRow.Number(2));
    data.mBytes = inRow.Blob(3, data.mSize);
    return StoredValue::Make(folded, name, data);
}

} // namespace

Tree::Tree() : mRoot(std::make_shared<StoredKey>())
{
    mRoot->mId = kRootKey;
    mKeys.emplace(kRootKey, mRoot.get());
}

std::shared_ptr<StoredKey>* Tree::Find(StoredKey& inKey, UnitsView inFolded)
{
    const auto found = std::lower_bound(
        inKey.mSubKeys.begin(), inKey.mSubKeys.end(), inFolded,
        [](const std::shared_ptr<StoredKey>& inLeft, UnitsView inRight) { return inLeft->mFolded < inRight; });
    return found != inKey.mSubKeys.end() && (*found)->mFolded == inFolded ? &*found : nullptr;
}

unsigned Tree::LevelOf(const StoredKey& inKey) noexcept
{
    unsigned level = 0;
    for (const StoredKey* key = inKey.mParent; key != nullptr; key = key->mParent) {
        ++level;
    }
    return level;
}

// Stores a key for each row: the key in memory, or a new key, which has no parent yet. Skips a row whose key has a
// different parent, because no version of the library writes such rows.
void Tree::Adopt(StoredKey& ioKey, std::vector<SubKeyRow>& ioRows, std::vector<std::shared_ptr<StoredKey>>& outSubKeys)
{
    outSubKeys.reserve(ioRows.size());
    for (SubKeyRow& row : ioRows) {
        const auto known = mKeys.find(row.mId);
        if (known == mKeys.end()) {
            auto key = std::make_shared<StoredKey>();
            key->mId = row.mId;
            key->mFolded = std::move(row.mFolded);
            key->mName = std::move(row.mName);
            mKeys.emplace(key->mId, key.get());
            outSubKeys.push_back(std::move(key));
        } else if (known->second->mParent == &ioKey) {
            const std::shared_ptr<StoredKey>* const here = Find(ioKey, row.mFolded);
            if (here != nullptr && (*here)->mId == row.mId) {
                outSubKeys.push_back(*here);
            }
        }
    }
}

SystemError Tree::LoadSubKeys(StoredKey& ioKey, Database* ioDatabase)
{
    if (ioKey.mHasSubKeys) {
        return kNoError;
    }
    std::vector<SubKeyRow> rows;
    const SystemError error = ReadSubKeys(ioKey.mId, ioDatabase, rows);
    if (error != kNoError) {
        return error;
    }
    // Allocate everything first; the tree changes only after the last allocation.
    std::vector<std::shared_ptr<StoredKey>> subKeys;
    try {
        Adopt(ioKey, rows, subKeys);
    } catch (...) {
        for (const std::shared_ptr<StoredKey>& key : subKeys) {
            if (key->mParent == nullptr) {
                mKeys.erase(key->mId);
            }
        }
        throw;
    }
    subKeys.swap(ioKey.mSubKeys); // now subKeys contains the previous list
    for (const std::shared_ptr<StoredKey>& key : ioKey.mSubKeys) {
        key->mParent = &ioKey;
    }
    ioKey.mHasSubKeys = true;
    for (const std::shared_ptr<StoredKey>& key : subKeys) {
        const std::shared_ptr<StoredKey>* const here = Find(ioKey, key->mFolded);
        if (here == nullptr || *here != key) {
            MarkDeleted(*key);
        }
    }
    return kNoError;
}

SystemError Tree::LoadValues(StoredKey& ioKey, Database* ioDatabase)
{
    if (ioKey.HasAllValues()) {
        return kNoError;
    }
    ValueTable values;
    if (ioDatabase != nullptr) {
        Statement query(*ioDatabase, Database::kSelectValues);
        query.Bind(1, ioKey.mId);
        while (query.Step()) {
            StoredValue::Ptr value = ReadValue(query);
            const std::uint64_t hash = HashName(value->Folded());
            values.Put(hash, std::move(value));
        }
        if (query.Error() != kNoError) {
            return query.Error();
        }
    }
    ioKey.mValues.Swap(values);
    ioKey.mStale.Clear();
    ioKey.mHasValues = true;
    return kNoError;
}

SystemError Tree::LoadValue(StoredKey& ioKey, const FoldedName& inName, Database* ioDatabase, StoredValue*& outValue)
{
    if (ioKey.Find(inName, outValue)) {
        return kNoError;
    }
    if (!ioKey.mHasValues || ioDatabase == nullptr) {
        const SystemError error = LoadValues(ioKey, ioDatabase);
        ioKey.Find(inName, outValue);
        return error;
    }
    outValue = nullptr;
    Statement query(*ioDatabase, Database::kSelectValue);
    query.Bind(1, ioKey.mId).Bind(2, inName.Text());
    StoredValue::Ptr value = query.Step() ? ReadValue(query) : nullptr;
    if (query.Error() != kNoError) {
        return query.Error();
    }
    if (value == nullptr) {
        ioKey.mValues.Erase(inName.Hash(), inName.Text());
    } else {
        outValue = &ioKey.mValues.Put(inName.Hash(), std::move(value));
    }
    ioKey.mStale.Remove(inName.Hash(), inName.Text()); // last: if Remove throws, the name stays stale
    return kNoError;
}

SystemError Tree::ApplyChange(const Change& inChange, Database* ioDatabase)
{
    if (inChange.mKind != Change::kSubKeys && inChange.mKind != Change::kValue) {
        return ReloadEverything(ioDatabase);
    }
    const auto found = mKeys.find(static_cast<std::int64_t>(inChange.mKey));
    if (found == mKeys.end()) {
        return kNoError;
    }
    StoredKey& key = *found->second;
    if (inChange.mKind == Change::kSubKeys) {
        return ReloadSubKeys(key, ioDatabase);
    }
    if (key.mHasValues && key.mStale.IsFull()) {
        key.mHasValues = false;
        key.mStale.Clear();
    } else if (key.mHasValues) {
        key.mStale.Add(inChange.mHash);
        key.mValues.SetStale(inChange.mHash);
    }
    return kNoError;
}

SystemError Tree::ReloadEverything(Database* ioDatabase)
{
    return ReloadBelow(*mRoot, ioDatabase);
}

SystemError Tree::ReloadBelow(StoredKey& ioKey, Database* ioDatabase)
{
    ioKey.mHasValues = false;
    ioKey.mValues.Clear();
    ioKey.mStale.Clear();
    SystemError error = ReloadSubKeys(ioKey, ioDatabase);
    for (std::size_t i = 0; error == kNoError && i < ioKey.mSubKeys.size(); ++i) {
        error = ReloadBelow(*ioKey.mSubKeys[i], ioDatabase);
    }
    return error;
}

SystemError Tree::ReloadSubKeys(StoredKey& ioKey, Database* ioDatabase)
{
    // If an earlier reload failed, mHasSubKeys is false although subkeys are in memory.
    const bool isInMemory = std::exchange(ioKey.mHasSubKeys, false) || !ioKey.mSubKeys.empty();
    return isInMemory ? LoadSubKeys(ioKey, ioDatabase) : kNoError;
}

void Tree::Insert(StoredKey& ioParent, std::int64_t inId, const Units& inFolded, const Units& inName)
{
    if (!ioParent.mHasSubKeys || mKeys.count(inId) != 0) {
        return;
    }
    auto key = std::make_shared<StoredKey>();
    key->mId = inId;
    key->mParent = &ioParent;
    key->mFolded = inFolded;
    key->mName = inName;
    key->mHasSubKeys = true; // a new key has no subkeys
    key->mHasValues = true;
    mKeys.reserve(mKeys.size() + 1);
    const auto place = std::lower_bound(
        ioParent.mSubKeys.begin(), ioParent.mSubKeys.end(), inFolded,
        [](const std::shared_ptr<StoredKey>& inLeft, const Units& inRight) { return inLeft->mFolded < inRight; });
    mKeys.emplace(inId, key.get());
    try {
        ioParent.mSubKeys.insert(place, std::move(key));
    } catch (...) {
        mKeys.erase(inId);
        throw;
    }
}

void Tree::Remove(StoredKey& ioKey) noexcept
{
    StoredKey* const parent = ioKey.mParent;
    if (parent == nullptr) {
        return;
    }
    const auto found = std::find_if(parent->mSubKeys.begin(), parent->mSubKeys.end(),
                                    [&](const std::shared_ptr<StoredKey>& inKey) { return inKey.get() == &ioKey; });
    const std::shared_ptr<StoredKey> key = found != parent->mSubKeys.end() ? *found : nullptr;
    if (found != parent->mSubKeys.end()) {
        parent->mSubKeys.erase(found);
    }
    MarkDeleted(ioKey);
}

void Tree::Clear() noexcept
{
    std::vector<std::shared_ptr<StoredKey>>().swap(mRoot->mSubKeys);
    mRoot->mHasSubKeys = false;
    mRoot->mHasValues = false;
    mRoot->mValues.Clear();
    mRoot->mStale = {};
    mKeys = {{kRootKey, mRoot.get()}};
}

void Tree::MarkDeleted(StoredKey& ioKey) noexcept
{
    std::vector<std::shared_ptr<StoredKey>> subKeys;
    subKeys.swap(ioKey.mSubKeys);
    for (const std::shared_ptr<StoredKey>& key : subKeys) {
        MarkDeleted(*key);
    }
    ioKey.mIsDeleted = true;
    ioKey.mParent = nullptr;
    ioKey.mValues.Clear();
    const auto known = mKeys.find(ioKey.mId);
    if (known != mKeys.end() && known->second == &ioKey) {
        mKeys.erase(known);
    }
}

} // namespace Linux
} // namespace Registry
} // namespace ORL
