// Floor: System
// One root: the database, what of it is in memory, and the handles to its keys.
//
// Reads come from memory while the board of changes says that nobody has written anything; else the store catches up
// first. Two locks: mWork for the database, one operation at a time; then mMemory for tree and handles, which a read from
// memory takes alone. Waiting for another process happens under mWork only.
#pragma once

#include "LinuxRegistryDatabase.h"
#include "LinuxRegistryHandles.h"
#include "LinuxRegistryPlaces.h"
#include "LinuxRegistryTree.h"
#include "LinuxTurnLock.h"

#include <Platform/Registry.h>

#include <mutex>
#include <vector>

namespace ORL {
namespace Registry {
namespace Linux {

using Platform::KeyHandle;

/// The key of an edit, kept for the next one, which is often about the same key.
struct EditTarget
{
    Units mPath;
    std::int64_t mKey = 0; // 0 for none
};

class Store
{
public:
    Store(bool inIsMachine, Place (*inFindPlace)()) noexcept
        : mIsMachine(inIsMachine), mFindPlace(inFindPlace), mHandles(inIsMachine)
    {
    }

    SystemError Open(const HandleParts& inParent, const unsigned short* inPath, unsigned inAccess, KeyHandle& outKey);
    SystemError Create(const HandleParts& inParent, const unsigned short* inPath, unsigned inAccess, KeyHandle& outKey,
                       bool& outIsMade);
    SystemError Close(const HandleParts& inKey);
    SystemError Delete(const HandleParts& inParent, const unsigned short* inPath, bool inWithDescendants);
    SystemError Enumerate(const HandleParts& inKey, unsigned inIndex, unsigned short* outName, unsigned& ioLength);
    SystemError Query(const HandleParts& inKey, UnitsView inName, unsigned* outType, void* outData, unsigned* ioSize);
    SystemError Set(const HandleParts& inKey, UnitsView inName, unsigned inType, const void* inData, std::size_t inSize);
    SystemError DeleteValue(const HandleParts& inKey, UnitsView inName);
    SystemError List(const HandleParts& inKey, std::vector<Platform::Value>& outValues);
    SystemError Apply(const std::vector<Platform::Edit>& inEdits);

    /// Place, size and databases that were set aside; with inCheck the database is read as a whole.
    Platform::StoreState State(bool inCheck);

    /// Closes the database and forgets what is in memory but for open handles' keys. The next operation opens it again.
    void Release() noexcept;

    /// Around a fork: nobody is at work on the store while the process is copied.
    void LockForFork();
    void UnlockAfterFork(bool inIsChild);

private:
    static constexpr unsigned kRightToQuery = 0x1;
    static constexpr unsigned kRightToSet = 0x2;
    static constexpr unsigned kRightToListSubKeys = 0x8;
    static constexpr std::uint64_t kNever = ~std::uint64_t{0};
    static constexpr SystemError kNotInMemory = ~SystemError{0};

    template <class Read>
    SystemError FromMemory(Read inRead);
    template <class Work, class Done>
    SystemError RunChange(const Change& inChange, Work inWork, Done inDone);
    template <class Work, class Done>
    SystemError RunChangeOnce(const Change& inChange, Work inWork, Done inDone);
    template <class Done>
    void KeepUp(std::uint64_t inAnnounced, Done inDone) noexcept;

    SystemError ApplyOne(const Platform::Edit& inEdit, EditTarget& ioTarget);
    SystemError CatchUp(bool inCreate);
    SystemError OpenDatabase(bool inCreate);
    SystemError Refresh();
    SystemError CatchUpWithBoard();
    SystemError CatchUpWithVersion();
    bool IsUpToDate() noexcept;
    bool IsInPlace() noexcept;
    void Forget() noexcept;
    Database* Loader() noexcept { return mDatabase.IsOpen() ? &mDatabase : nullptr; }

    SystemError Resolve(const HandleParts& inKey, unsigned inAccess, StoredKey*& outKey) const;
    SystemError Walk(StoredKey& inFrom, const unsigned short* inPath, bool inMayLoad, StoredKey*& outKey);
    SystemError CheckAccess(unsigned inAccess) const;
    SystemError AddHandle(StoredKey& inKey, unsigned inAccess, KeyHandle& outKey);
    SystemError FindToDelete(const HandleParts& inParent, const unsigned short* inPath, bool inWithDescendants,
                             bool inMayLoad, StoredKey*& outKey);
    SystemError FindTarget(const unsigned short* inPath, bool inMake, EditTarget& ioTarget);
    SystemError PutOrTake(const HandleParts& inKey, UnitsView inName, const StoredValue* inValue);

    const bool mIsMachine;
    Place (*const mFindPlace)();

    TurnLock mWork;
    std::mutex mMemory;
    Database mDatabase; // opened and closed under both
    Place mPlace;
    int mProcess = 0; // that has opened the database
    Tree mTree;
    HandleTable mHandles;
    Units mFolded;              // a name that is looked up, under mMemory
    std::uint64_t mSeen = kNever; // generation of the board that memory is up to date with
    std::int64_t mVersion = -1;   // the same for a database without a board
    std::uint64_t mPlaceSeenAt = 0; // when the database and its board were last found in their places
};

/// The store that a handle belongs to.
Store& StoreOf(const HandleParts& inKey);

/// Closes both databases.
void ReleaseStores() noexcept;

} // namespace Linux
} // namespace Registry
} // namespace ORL
