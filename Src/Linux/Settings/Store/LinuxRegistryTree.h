// Floor: System
// The keys and values of a store in memory. Each key is loaded when it is first needed.
//
// Not thread-safe; the store locks the tree.
#pragma once

#include "../LinuxRegistryNames.h"
#include "../LinuxRegistryStaleNames.h"
#include "../LinuxRegistryValueTable.h"
#include "LinuxRegistryBoard.h"

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace ORL {
namespace Registry {
namespace Linux {

class Database;

/// A key in memory. A deleted key has no parent, and lives until its last handle is closed.
struct StoredKey : std::enable_shared_from_this<StoredKey>
{
    std::int64_t mId = 0;
    StoredKey* mParent = nullptr;
    Units mFolded;
    Units mName;
    bool mIsDeleted = false;
    bool mHasSubKeys = false;                         // mSubKeys is loaded
    bool mHasValues = false;                          // mValues is loaded, except those of mStale
    std::vector<std::shared_ptr<StoredKey>> mSubKeys; // sorted by folded name
    ValueTable mValues;
    StaleNames mStale; // the values of these names in mValues are marked stale

    bool HasAllValues() const noexcept { return mHasValues && mStale.IsEmpty(); }

    /// Finds a value; stores null if the key has no such value. Returns false if the database must be queried.
    bool Find(const FoldedName& inName, StoredValue*& outValue) const noexcept
    {
        outValue = mHasValues ? mValues.Find(inName.Hash(), inName.Text()) : nullptr;
        if (outValue != nullptr) {
            return !outValue->IsStale();
        }
        return mHasValues && (mStale.IsEmpty() || !mStale.Contains(inName.Hash(), inName.Text()));
    }
};

/// A row of the table of keys: a subkey of the queried key.
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

    /// Returns the subkey with a folded name, or null. mSubKeys must be loaded.
    static std::shared_ptr<StoredKey>* Find(StoredKey& inKey, UnitsView inFolded);

    /// Returns the number of levels between a key and the root; 0 for the root.
    static unsigned LevelOf(const StoredKey& inKey) noexcept;

    /// LoadSubKeys and LoadValues load what is missing or stale in memory. A null database denotes an empty store.
    SystemError LoadSubKeys(StoredKey& ioKey, Database* ioDatabase);
    SystemError LoadValues(StoredKey& ioKey, Database* ioDatabase);

    /// Finds a value, after loading it if it is stale; stores null if the value does not exist.
    SystemError LoadValue(StoredKey& ioKey, const FoldedName& inName, Database* ioDatabase, StoredValue*& outValue);

    /// Processes another writer's change. A changed value becomes stale. A changed list of subkeys that is in memory
    /// is reloaded immediately, so that deleted keys are marked.
    SystemError ApplyChange(const Change& inChange, Database* ioDatabase);

    /// Processes a change that may affect all keys and values.
    SystemError ReloadEverything(Database* ioDatabase);

    /// Inserts a new key if the list of its siblings is in memory.
    void Insert(StoredKey& ioParent, std::int64_t inId, const Units& inFolded, const Units& inName);

    /// Removes a key and its descendants.
    void Remove(StoredKey& ioKey) noexcept;

    /// Discards all keys. No handle may be open.
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
