// Opens the database, updates memory from it, and finds keys.
#include "LinuxRegistryStoreWork.h"

#include "../LinuxRegistryTrace.h"
#include "LinuxRegistryFolder.h"

#include <ctime>
#include <unistd.h>

namespace ORL {
namespace Registry {
namespace Linux {

using namespace SystemErrors;

namespace {

// The + 10 allows for the coarse clock, which advances in steps of at most ten milliseconds.
constexpr unsigned kFileCheckMilliseconds = 10;
static_assert(kFileCheckMilliseconds + 10 < ChangeBoard::kGracePeriodMilliseconds);

constexpr unsigned kChangingBits = 0x2 | 0x4 | 0x20 | 0x10000 | 0x40000 | 0x80000; // access rights that allow a change

} // namespace

bool Store::IsUpToDate() noexcept
{
    return mAppliedGeneration != kUnknownGeneration && mDatabase.IsOpen() && mDatabase.Board().IsOpen()
           && mDatabase.Board().Generation() == mAppliedGeneration && IsFileCurrent();
}

// Looks up the file names at most once per kFileCheckMilliseconds, because that costs more than a read.
bool Store::IsFileCurrent() noexcept
{
    const std::uint64_t now = MonotonicMilliseconds(CLOCK_MONOTONIC_COARSE);
    if (now != 0 && now - mFilesCheckedAt < kFileCheckMilliseconds) {
        return true;
    }
    const bool isCurrent = mDatabase.IsFileCurrent();
    mFilesCheckedAt = isCurrent ? now : 0;
    return isCurrent;
}

void Store::InvalidateMemory() noexcept
{
    mAppliedGeneration = kUnknownGeneration;
    mVersion = -1;
}

SystemError Store::OpenAndUpdate(IfMissing inIfMissing)
{
    if (mDatabase.IsOpen() && mProcess != ::getpid()) {
        mDatabase.Close(); // a child of fork needs its own connection and locks
        InvalidateMemory();
    }
    if (mDatabase.IsOpen() && !mDatabase.IsFileCurrent()) {
        mDatabase.Close();
        InvalidateMemory();
    }
    SystemError error = mDatabase.IsOpen() ? kNoError : OpenDatabase(inIfMissing);
    if (error == kErrorFileNotFound && inIfMissing == IfMissing::kReport) {
        return mTree.ReloadEverything(nullptr); // an empty store until the first write
    }
    if (error == kNoError && inIfMissing == IfMissing::kCreate && mDatabase.IsReadOnly()) {
        return kErrorAccessDenied;
    }
    return error == kNoError ? UpdateMemory() : error;
}

SystemError Store::UpdateMemory()
{
    const SystemError error = mDatabase.Board().IsOpen() ? UpdateFromBoard() : UpdateFromDataVersion();
    if (error != kNoError) {
        InvalidateMemory();
    }
    return error;
}

SystemError Store::OpenDatabase(IfMissing inIfMissing)
{
    InvalidateMemory();
    mLocation = mFindLocation();
    SystemError error = mDatabase.Open(mLocation, inIfMissing);
    if (mDatabase.SetAsideIfDamaged()) {
        // The new database records why the old one was set aside.
        error = mDatabase.Open(mLocation, IfMissing::kCreate);
    }
    if (error == kNoError) {
        mProcess = ::getpid();
    } else if (error != kErrorFileNotFound) {
        TraceOpenError(mLocation.mDatabase, error);
    }
    return error;
}

SystemError Store::UpdateFromBoard()
{
    const std::uint64_t generation = mDatabase.Board().Generation();
    if (generation == mAppliedGeneration) {
        return kNoError;
    }
    std::uint64_t finished = generation & ~std::uint64_t{1};
    std::vector<Change> changes;
    SystemError error = kNoError;
    if (mAppliedGeneration == kUnknownGeneration
        || !mDatabase.Board().ChangesSince(mAppliedGeneration, finished, changes)) {
        error = mTree.ReloadEverything(DatabaseOrNull());
        changes.clear();
    }
    for (std::size_t i = 0; i < changes.size() && error == kNoError; ++i) {
        error = mTree.ApplyChange(changes[i], DatabaseOrNull());
    }
    mAppliedGeneration = error == kNoError ? finished : kUnknownGeneration;
    return error;
}

SystemError Store::UpdateFromDataVersion()
{
    Statement query(mDatabase, Database::kDataVersion);
    const std::int64_t version = query.Step() ? query.Number(0) : -1;
    if (query.Error() != kNoError || version == mVersion) {
        return query.Error();
    }
    mVersion = version;
    return mTree.ReloadEverything(DatabaseOrNull());
}

SystemError Store::Resolve(const HandleParts& inKey, unsigned inAccess, StoredKey*& outKey) const
{
    unsigned access = Platform::kAccessAll;
    outKey = mTree.Root().get();
    if (!inKey.mIsRoot && !mHandles.Find(inKey, outKey, access)) {
        return kErrorInvalidHandle;
    }
    if (outKey->mIsDeleted) {
        return kErrorKeyDeleted;
    }
    return (access & inAccess) == inAccess ? kNoError : kErrorAccessDenied;
}

SystemError Store::FindByPath(StoredKey& inFrom, const unsigned short* inPath, ReadSource inSource, StoredKey*& outKey)
{
    PathNames names(inPath);
    outKey = &inFrom;
    for (UnitsView name; names.Next(name);) {
        if (!outKey->mHasSubKeys && inSource == ReadSource::kMemory) {
            return kNotInMemory;
        }
        const SystemError error = mTree.LoadSubKeys(*outKey, DatabaseOrNull());
        if (error != kNoError) {
            return error;
        }
        FoldName(name, mFolded);
        const std::shared_ptr<StoredKey>* const found = Tree::Find(*outKey, mFolded);
        if (found == nullptr) {
            return kErrorFileNotFound;
        }
        outKey = found->get();
    }
    return kNoError;
}

// If the process may not write the machine's store, opening a key for writing fails. The user's own store may be
// read-only temporarily, so its keys can be opened for writing, and each change fails.
SystemError Store::CheckAccess(unsigned inAccess) const
{
    if ((inAccess & Platform::kAccessViewBits) == Platform::kAccessViewBits) {
        return kErrorInvalidParameter;
    }
    if (mKind == StoreKind::kUser || (inAccess & kChangingBits) == 0) {
        return kNoError;
    }
    const bool mayWrite = mDatabase.IsOpen() ? !mDatabase.IsReadOnly() : MayCreate(mFindLocation());
    return mayWrite ? kNoError : kErrorAccessDenied;
}

SystemError Store::AddHandle(StoredKey& inKey, unsigned inAccess, KeyHandle& outKey)
{
    const SystemError error = CheckAccess(inAccess);
    if (error == kNoError) {
        outKey = mHandles.Add(inKey.shared_from_this(), inAccess);
    }
    return error;
}

void Store::Release() noexcept
{
    const FairMutexLock work(mDatabaseLock);
    const MutexLock memory(mMemoryLock);
    mDatabase.Close();
    InvalidateMemory();
    if (mHandles.IsEmpty()) {
        mTree.Clear();
        mHandles.Clear();
    }
}

void Store::LockForFork()
{
    mDatabaseLock.lock();
    mMemoryLock.lock();
}

void Store::UnlockAfterFork(ForkSide inSide)
{
    mMemoryLock.unlock();
    if (inSide == ForkSide::kChild) {
        mDatabaseLock.ResetAfterFork();
    } else {
        mDatabaseLock.unlock();
    }
}

} // namespace Linux
} // namespace Registry
} // namespace ORL
