// Floor: System
// The store of one root: its database, the keys in memory, and the handles to its keys.
//
// While the board shows no new changes, reads are served from memory. Otherwise the store first processes the changes.
// There are two locks. mDatabaseLock is acquired first and admits one database operation at a time; mMemoryLock guards
// tree and handles. A read from memory acquires only mMemoryLock. A thread waits for other processes only under
// mDatabaseLock.
#pragma once

#include "../LinuxRegistryHandles.h"
#include "../LinuxRegistryLocations.h"
#include "LinuxFairMutex.h"
#include "LinuxRegistryDatabase.h"
#include "LinuxRegistryTree.h"

#include <Platform/Registry.h>

#include <mutex>
#include <vector>

namespace ORL {
namespace Registry {
namespace Linux {

using Platform::KeyHandle;

/// The key of an edit. The key is cached, because the next edit often changes the same key.
struct EditTarget
{
    Units mPath;
    std::int64_t mKey = 0; // 0 for none
};

/// What a deletion does to a key that has subkeys.
enum class Descendants { kRefuse, kDelete };

enum class ForkSide { kParent, kChild };

class Store
{
public:
    Store(StoreKind inKind, StoreLocation (*inFindLocation)()) noexcept
        : mKind(inKind), mFindLocation(inFindLocation), mHandles(inKind)
    {
    }

    SystemError Open(const HandleParts& inParent, const unsigned short* inPath, unsigned inAccess, KeyHandle& outKey);
    SystemError Create(const HandleParts& inParent, const unsigned short* inPath, unsigned inAccess, KeyHandle& outKey,
                       bool& outIsMade);
    SystemError Close(const HandleParts& inKey);
    SystemError Delete(const HandleParts& inParent, const unsigned short* inPath, Descendants inDescendants);
    SystemError Enumerate(const HandleParts& inKey, unsigned inIndex, unsigned short* outName, unsigned& ioLength);
    SystemError Query(const HandleParts& inKey, UnitsView inName, unsigned* outType, void* outData, unsigned* ioSize);
    SystemError Set(const HandleParts& inKey, UnitsView inName, unsigned inType, const void* inData,
                    std::size_t inSize);
    SystemError DeleteValue(const HandleParts& inKey, UnitsView inName);
    SystemError List(const HandleParts& inKey, std::vector<Platform::Value>& outValues);
    SystemError Apply(const std::vector<Platform::Edit>& inEdits);

    /// Returns the path, the size and the databases that were set aside. With kEverything checks the whole database. A
    /// database that is too damaged to open is set aside first.
    Platform::StoreState State(Platform::StoreCheck inCheck);

    /// Closes the database, and frees the keys in memory if no handle is open. The next operation opens it again.
    void Release() noexcept;

    /// Called before and after a fork, so that no thread uses the store while the process is copied.
    void LockForFork();
    void UnlockAfterFork(ForkSide inSide);

private:
    static constexpr unsigned kRightToQuery = 0x1;
    static constexpr unsigned kRightToSet = 0x2;
    static constexpr unsigned kRightToListSubKeys = 0x8;
    static constexpr std::uint64_t kUnknownGeneration = ~std::uint64_t{0};
    static constexpr SystemError kNotInMemory = ~SystemError{0};

    /// kMemory reads only what is in memory; kDatabase may load the rest.
    enum class ReadSource { kMemory, kDatabase };

    template <class Read>
    SystemError RunRead(Read inRead);
    template <class Work, class Done>
    SystemError RunChange(const Change& inChange, Work inWork, Done inDone);
    template <class Work, class Done>
    SystemError RunChangeOnce(const Change& inChange, Work inWork, Done inDone);
    template <class Done>
    void ApplyOwnChange(std::uint64_t inPosted, Done inDone) noexcept;

    SystemError ApplyOne(const Platform::Edit& inEdit, EditTarget& ioTarget);
    SystemError OpenAndUpdate(IfMissing inIfMissing);
    SystemError OpenDatabase(IfMissing inIfMissing);
    SystemError UpdateMemory();
    SystemError UpdateFromBoard();
    SystemError UpdateFromDataVersion();
    bool IsUpToDate() noexcept;
    bool IsFileCurrent() noexcept;
    void InvalidateMemory() noexcept;
    Database* DatabaseOrNull() noexcept { return mDatabase.IsOpen() ? &mDatabase : nullptr; }

    SystemError Resolve(const HandleParts& inKey, unsigned inAccess, StoredKey*& outKey) const;
    SystemError FindByPath(StoredKey& inFrom, const unsigned short* inPath, ReadSource inSource, StoredKey*& outKey);
    SystemError CheckAccess(unsigned inAccess) const;
    SystemError AddHandle(StoredKey& inKey, unsigned inAccess, KeyHandle& outKey);
    SystemError FindToDelete(const HandleParts& inParent, const unsigned short* inPath, Descendants inDescendants,
                             ReadSource inSource, StoredKey*& outKey);
    SystemError FindTarget(const unsigned short* inPath, IfMissing inIfMissing, EditTarget& ioTarget);
    SystemError FindValue(const HandleParts& inKey, unsigned inAccess, const FoldedName& inName, ReadSource inSource,
                          StoredValue*& outValue);
    SystemError SetOrDeleteValue(const HandleParts& inKey, UnitsView inName, const ValueData* inValue);

    const StoreKind mKind;
    StoreLocation (*const mFindLocation)();

    FairMutex mDatabaseLock;
    std::mutex mMemoryLock;
    Database mDatabase; // opened and closed under both locks
    StoreLocation mLocation;
    int mProcess = 0; // the process that opened the database
    Tree mTree;
    HandleTable mHandles;
    Units mFolded; // buffer for the name that is looked up, guarded by mMemoryLock
    std::uint64_t mAppliedGeneration = kUnknownGeneration; // the board's generation whose changes are in memory
    std::int64_t mVersion = -1;        // for a database without a board: the data version whose contents are in memory
    std::uint64_t mFilesCheckedAt = 0; // when the files of the database and its board were last found under their names
};

/// Returns the store of a handle.
Store& StoreOf(const HandleParts& inKey);

/// Closes both databases.
void ReleaseStores() noexcept;

} // namespace Linux
} // namespace Registry
} // namespace ORL
