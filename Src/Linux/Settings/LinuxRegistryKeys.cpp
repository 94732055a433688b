// Opens, creates, deletes and lists the keys of a store.
#include "Store/LinuxRegistryStoreWork.h"

#include <algorithm>

namespace ORL {
namespace Registry {
namespace Linux {

using namespace SystemErrors;

namespace {

struct NewKey
{
    Units mFolded;
    Units mName;
    std::int64_t mId = 0;
};

} // namespace

SystemError Store::Open(const HandleParts& inParent, const unsigned short* inPath, unsigned inAccess, KeyHandle& outKey)
{
    return RunRead([&](ReadSource inSource) TVXCORE_REQUIRES(mMemoryLock) {
        StoredKey* key = nullptr;
        SystemError error = Resolve(inParent, 0, key);
        error = error == kNoError ? PathNames(inPath).Check() : error;
        error = error == kNoError ? FindByPath(*key, inPath, inSource, key) : error;
        return error == kNoError ? AddHandle(*key, inAccess, outKey) : error;
    });
}

SystemError Store::Create(const HandleParts& inParent, const unsigned short* inPath, unsigned inAccess,
                          KeyHandle& outKey, bool& outIsMade)
{
    SystemError error = Open(inParent, inPath, inAccess, outKey);
    if (error != kErrorFileNotFound) {
        return error;
    }
    StoredKey* last = nullptr; // the last existing key in the path
    std::vector<NewKey> made;
    Change change;
    change.mKind = Change::kSubKeys;
    const auto make = [&]() TVXCORE_REQUIRES(mDatabaseLock, mMemoryLock) {
        made.clear();
        SystemError found = Resolve(inParent, 0, last);
        PathNames names(inPath);
        for (UnitsView name; found == kNoError && names.Next(name);) {
            FoldName(name, mFolded);
            const std::shared_ptr<StoredKey>* next = nullptr;
            if (made.empty()) {
                found = mTree.LoadSubKeys(*last, DatabaseOrNull());
                next = found == kNoError ? Tree::Find(*last, mFolded) : nullptr;
            }
            if (next != nullptr) {
                last = next->get();
            } else {
                made.push_back({mFolded, Units(name), 0});
            }
        }
        const std::size_t level = found == kNoError ? Tree::LevelOf(*last) + made.size() : 0;
        if (made.size() > kMaxLevelsAtOnce || level > kMaxLevels) {
            return kErrorInvalidParameter;
        }
        found = found == kNoError ? CheckAccess(inAccess) : found;
        std::int64_t parent = found == kNoError ? last->mId : 0;
        change.mKey = static_cast<std::uint64_t>(parent);
        mDatabase.SetChange(change);
        for (std::size_t i = 0; i < made.size() && found == kNoError; ++i) {
            Statement insert(mDatabase, Database::kInsertKey);
            found = insert.Bind(1, parent).Bind(2, UnitsView(made[i].mFolded)).Bind(3, UnitsView(made[i].mName)).Run();
            parent = made[i].mId = mDatabase.LastRow();
        }
        return found;
    };
    const auto keep = [&]() TVXCORE_REQUIRES(mDatabaseLock, mMemoryLock) {
        for (const NewKey& key : made) {
            mTree.Insert(*last, key.mId, key.mFolded, key.mName);
            const std::shared_ptr<StoredKey>* const inserted = Tree::Find(*last, key.mFolded);
            if (inserted == nullptr) {
                break; // a corrupt database: another key already has the new key's identifier
            }
            last = inserted->get();
        }
        return kNoError;
    };
    error = RunChange(change, make, keep);
    outIsMade = !made.empty(); // empty if another process has already created the key
    return error == kNoError ? Open(inParent, inPath, inAccess, outKey) : error;
}

SystemError Store::Close(const HandleParts& inKey)
{
    std::shared_ptr<StoredKey> key; // destroyed after the lock is released
    const MutexLock memory(mMemoryLock);
    key = mHandles.Remove(inKey);
    return key != nullptr ? kNoError : kErrorInvalidHandle;
}

// Finds the key to delete and checks that it may be deleted.
SystemError Store::FindToDelete(const HandleParts& inParent, const unsigned short* inPath, Descendants inDescendants,
                                ReadSource inSource, StoredKey*& outKey)
{
    SystemError error = Resolve(inParent, 0, outKey);
    error = error == kNoError ? PathNames(inPath).Check() : error;
    error = error == kNoError ? FindByPath(*outKey, inPath, inSource, outKey) : error;
    if (error != kNoError) {
        return error;
    }
    if (outKey == mTree.Root().get()) {
        return kErrorAccessDenied;
    }
    if (inDescendants == Descendants::kDelete) {
        return CheckAccess(Platform::kAccessReadWrite);
    }
    if (!outKey->mHasSubKeys && inSource == ReadSource::kMemory) {
        return kNotInMemory;
    }
    error = mTree.LoadSubKeys(*outKey, DatabaseOrNull());
    return error == kNoError && !outKey->mSubKeys.empty() ? kErrorAccessDenied : error;
}

SystemError Store::Delete(const HandleParts& inParent, const unsigned short* inPath, Descendants inDescendants)
{
    StoredKey* key = nullptr;
    const SystemError error = RunRead([&](ReadSource inSource) TVXCORE_REQUIRES(mMemoryLock) {
        return FindToDelete(inParent, inPath, inDescendants, inSource, key);
    });
    if (error != kNoError) {
        return error;
    }
    Change change;
    change.mKind = Change::kSubKeys;
    const auto erase = [&]() TVXCORE_REQUIRES(mDatabaseLock, mMemoryLock) {
        SystemError found = FindToDelete(inParent, inPath, inDescendants, ReadSource::kDatabase, key);
        if (found != kNoError) {
            return found;
        }
        change.mKey = static_cast<std::uint64_t>(key->mParent->mId);
        mDatabase.SetChange(change);
        found = Statement(mDatabase, Database::kDeleteTreeValues).Bind(1, key->mId).Run();
        return found == kNoError ? Statement(mDatabase, Database::kDeleteTree).Bind(1, key->mId).Run() : found;
    };
    return RunChange(change, erase, [&]() TVXCORE_REQUIRES(mDatabaseLock, mMemoryLock) {
        mTree.Remove(*key);
        return kNoError;
    });
}

SystemError Store::Enumerate(const HandleParts& inKey, unsigned inIndex, unsigned short* outName, unsigned& ioLength)
{
    return RunRead([&](ReadSource inSource) TVXCORE_REQUIRES(mMemoryLock) {
        StoredKey* key = nullptr;
        SystemError error = Resolve(inKey, kRightToListSubKeys, key);
        if (error == kNoError && !key->mHasSubKeys && inSource == ReadSource::kMemory) {
            return kNotInMemory;
        }
        error = error == kNoError ? mTree.LoadSubKeys(*key, DatabaseOrNull()) : error;
        if (error != kNoError) {
            return error;
        }
        if (inIndex >= key->mSubKeys.size()) {
            return kErrorNoMoreItems;
        }
        const Units& name = key->mSubKeys[inIndex]->mName;
        if (name.size() >= ioLength) {
            return kErrorMoreData;
        }
        std::copy_n(name.c_str(), name.size() + 1, outName);
        ioLength = static_cast<unsigned>(name.size());
        return kNoError;
    });
}

} // namespace Linux
} // namespace Registry
} // namespace ORL
