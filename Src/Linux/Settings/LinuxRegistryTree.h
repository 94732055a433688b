// Floor: System
// What this process knows of a store: keys and values in memory, loaded key by key when they are first needed.
//
// Not thread-safe; the store locks it.
#pragma once

#include "LinuxRegistryBoard.h"
#include "LinuxRegistryNames.h"
#include "LinuxRegistryStaleNames.h"

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace ORL {
namespace Registry {
namespace Linux {

class Database;

struct StoredValue
{
    Units mName;
    unsigned mType = 0;
    std::basic_string<unsigned char> mData; // most values fit into the string itself
};

struct HashOfName
{
    // Not noexcept: the standard library then keeps each entry's hash beside it, instead of hashing names again that it
    // passes in a look-up.
    std::size_t operator()(const Units& inFolded) const { return HashName(inFolded); }
};

/// One key in memory. A deleted one lives as long as a handle to it, without a parent.
struct StoredKey : std::enable_shared_from_this<StoredKey>
{
    std::int64_t mId = 0;
    StoredKey* mParent = nullptr;
    Units mFolded;
    Units mName;
    bool mIsDeleted = false;
    bool mHasSubKeys = false; // mSubKeys is loaded
    bool mHasValues = false;  // mValues is loaded, but for those of mStale
    std::vector<std::shared_ptr<StoredKey>> mSubKeys; // in the order of their folded names
    std::unordered_map<Units, StoredValue, HashOfName> mValues; // by folded name
    StaleNames mStale;

    bool HasAllValues() const noexcept { return mHasValues && mStale.IsEmpty(); }
    bool HasValue(const Units& inFolded) const noexcept
    {
        return mHasValues && (mStale.IsEmpty() || !mStale.Contains(HashName(inFolded), inFolded));
    }
};

/// A key as its parent's list has it.
struct SubKeyRow
{
    std::int64_t mId = 0;
    Units mFolded;
    Units mName;
};

class Tree
{
public:
    Tree();

    const std::shared_ptr<StoredKey>& Root() const noexcept { return mRoot; }

    /// The subkey of that folded name, or null. mSubKeys must be loaded.
    static std::shared_ptr<StoredKey>* Find(StoredKey& inKey, UnitsView inFolded);

    /// A key and how deep it is below the root.
    static unsigned LevelOf(const StoredKey& inKey) noexcept;

    /// Load from the database what is missing of a key, or is stale. Without a database (null) there is the empty store.
    SystemError LoadSubKeys(StoredKey& ioKey, Database* ioDatabase);
    SystemError LoadValues(StoredKey& ioKey, Database* ioDatabase);

    /// Loads the value of that folded name, if it is stale.
    SystemError LoadValue(StoredKey& ioKey, const Units& inFolded, Database* ioDatabase);

    /// Takes note of a change that another writer has made. Subkeys in memory are loaded again at once, so that keys
    /// which are gone are known to be.
    SystemError Note(const Change& inChange, Database* ioDatabase);

    /// The same when everything may have changed.
    SystemError NoteEverything(Database* ioDatabase);

    /// Puts a new key in, if its neighbours are in memory.
    void Insert(StoredKey& ioParent, std::int64_t inId, const Units& inFolded, const Units& inName);

    /// Takes a key out with all below it.
    void Remove(StoredKey& ioKey) noexcept;

    /// Forgets everything. No handle may be open.
    void Clear() noexcept;

private:
    void Adopt(StoredKey& ioKey, std::vector<SubKeyRow>& ioRows, std::vector<std::shared_ptr<StoredKey>>& outSubKeys);
    SystemError ReloadSubKeys(StoredKey& ioKey, Database* ioDatabase);
    SystemError ReloadBelow(StoredKey& ioKey, Database* ioDatabase);
    void MarkDeleted(StoredKey& ioKey) noexcept;

    std::shared_ptr<StoredKey> mRoot;
    std::unordered_map<std::int64_t, StoredKey*> mKeys;
};

} // namespace Linux
} // namespace Registry
} // namespace ORL
