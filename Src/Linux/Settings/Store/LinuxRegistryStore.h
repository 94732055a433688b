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

#include <Platform/Mutex.h>
#include <Platform/Registry.h>

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

    /// Called before and after a fork, so that no thread uses the store during the fork.
    void LockForFork() TVXCORE_ACQUIRES(mDatabaseLock, mMemoryLock);
    void UnlockAfterFork(ForkSide inSide) TVXCORE_RELEASES(mDatabaseLock, mMemoryLock);

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
    SystemError RunChangeOnce(const Change& inChange, Work inWork, Done inDone) TVXCORE_REQUIRES(mDatabaseLock);
    template <class Done>
    void ApplyOwnChange(std::uint64_t inPosted, Done inDone) noexcept TVXCORE_REQUIRES(mDatabaseLock, mMemoryLock);

    SystemError ApplyOne(const Platform::Edit& inEdit, EditTarget& ioTarget)
        TVXCORE_REQUIRES(mDatabaseLock, mMemoryLock);
    SystemError OpenAndUpdate(IfMissing inIfMissing) TVXCORE_REQUIRES(mDatabaseLock, mMemoryLock);
    SystemError OpenDatabase(IfMissing inIfMissing) TVXCORE_REQUIRES(mDatabaseLock, mMemoryLock);
    SystemError UpdateMemory() TVXCORE_REQUIRES(mDatabaseLock, mMemoryLock);
    SystemError UpdateFromBoard() TVXCORE_REQUIRES(mDatabaseLock, mMemoryLock);
    SystemError UpdateFromDataVersion() TVXCORE_REQUIRES(mDatabaseLock, mMemoryLock);
    bool IsUpToDate() noexcept TVXCORE_REQUIRES(mMemoryLock);
    bool IsFileCurrent() noexcept TVXCORE_REQUIRES(mMemoryLock);
    void InvalidateMemory() noexcept TVXCORE_REQUIRES(mMemoryLock);
    Database* DatabaseOrNull() noexcept { return mDatabase.IsOpen() ? &mDatabase : nullptr; }

    SystemError Resolve(const HandleParts& inKey, unsigned inAccess, StoredKey*& outKey) const
        TVXCORE_REQUIRES(mMemoryLock);
    SystemError FindByPath(StoredKey& inFrom, const unsigned short* inPath, ReadSource inSource, StoredKey*& outKey)
        TVXCORE_REQUIRES(mMemoryLock);
    SystemError CheckAccess(unsigned inAccess) const TVXCORE_REQUIRES(mMemoryLock);
    SystemError AddHandle(StoredKey& inKey, unsigned inAccess, KeyHandle& outKey) TVXCORE_REQUIRES(mMemoryLock);
    SystemError FindToDelete(const HandleParts& inParent, const unsigned short* inPath, Descendants inDescendants,
                             ReadSource inSource, StoredKey*& outKey) TVXCORE_REQUIRES(mMemoryLock);
    SystemError FindTarget(const unsigned short* inPath, IfMissing inIfMissing, EditTarget& ioTarget)
        TVXCORE_REQUIRES(mDatabaseLock, mMemoryLock);
    SystemError FindValue(const HandleParts& inKey, unsigned inAccess, const FoldedName& inName, ReadSource inSource,
                          StoredValue*& outValue) TVXCORE_REQUIRES(mMemoryLock);
    SystemError SetOrDeleteValue(const HandleParts& inKey, UnitsView inName, const ValueData* inValue)
        TVXCORE_REQUIRES(mDatabaseLock);

    const StoreKind mKind;
    StoreLocation (*const mFindLocation)();

    FairMutex mDatabaseLock;
    Mutex mMemoryLock;
    // Opened and closed under both locks; statements run under mDatabaseLock; its state is read under either lock.
    // clang cannot check this.
    Database mDatabase;
    StoreLocation mLocation TVXCORE_GUARDED_BY(mMemoryLock);
    int mProcess TVXCORE_GUARDED_BY(mMemoryLock) = 0; // the process that opened the database
    Tree mTree TVXCORE_GUARDED_BY(mMemoryLock);
    HandleTable mHandles TVXCORE_GUARDED_BY(mMemoryLock);
    Units mFolded TVXCORE_GUARDED_BY(mMemoryLock); // buffer for the name that is looked up
    // The last generation of the board whose changes are in memory.
    std::uint64_t mAppliedGeneration TVXCORE_GUARDED_BY(mMemoryLock) = kUnknownGeneration;
    // For a database without a board: the data version whose contents are in memory.
    std::int64_t mVersion TVXCORE_GUARDED_BY(mMemoryLock) = -1;
    // When the names of the database and its board were last found to refer to the open files.
    std::uint64_t mFilesCheckedAt TVXCORE_GUARDED_BY(mMemoryLock) = 0;
};

/// Returns the store of a handle.
Store& StoreOf(const HandleParts& inKey);

/// Closes both databases.
void ReleaseStores() noexcept;

} // namespace Linux
} // namespace Registry
} // namespace ORL
