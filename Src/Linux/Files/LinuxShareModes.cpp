#include "LinuxShareModes.h"

#include "../Calls/SystemCalls.h"

#include <cerrno>
#include <chrono>
#include <thread>
#include <type_traits>

namespace ORL {
namespace Linux {

// Holders of the files that hash to this bucket. Never destroyed: files may be closed after static destruction.
struct ShareBucket
{
    Mutex mMutex;
    ShareHolder* mFirst TVXCORE_GUARDED_BY(mMutex) = nullptr;

    bool HasConflict(const FileIdentity& inFile, unsigned inUses, unsigned inShares) const noexcept
        TVXCORE_REQUIRES(mMutex)
    {
        for (const ShareHolder* holder = mFirst; holder != nullptr; holder = holder->mNext) {
            const bool collides = (holder->mUses & ~inShares) != 0 || (inUses & ~holder->mShares) != 0;
            if (collides && holder->mFile == inFile) {
                return true;
            }
        }
        return false;
    }

    void Add(ShareHolder& ioHolder) noexcept TVXCORE_REQUIRES(mMutex)
    {
        ioHolder.mNext = mFirst;
        ioHolder.mPrevious = nullptr;
        if (mFirst != nullptr) {
            mFirst->mPrevious = &ioHolder;
        }
        mFirst = &ioHolder;
    }

    void Remove(ShareHolder& ioHolder) noexcept TVXCORE_REQUIRES(mMutex)
    {
        (ioHolder.mPrevious != nullptr ? ioHolder.mPrevious->mNext : mFirst) = ioHolder.mNext;
        if (ioHolder.mNext != nullptr) {
            ioHolder.mNext->mPrevious = ioHolder.mPrevious;
        }
    }
};

namespace {

using namespace SystemErrors;

static_assert(std::is_trivially_destructible<ShareBucket>::value, "files may be closed after the statics are gone");

constexpr std::size_t kBuckets = 512;
ShareBucket sBuckets[kBuckets];

ShareBucket& BucketOf(const FileIdentity& inFile) noexcept
{
    const std::uint64_t mixed = (inFile.mNode ^ inFile.mDevice << 40) * 0x9E3779B97F4A7C15u;
    return sBuckets[mixed >> 55];
}

// The order makes the bytes of the usual opens adjacent, so that one call locks them.
constexpr off_t kFirstByte = off_t{1} << 62;
constexpr unsigned kByteCount = 6;
enum Byte : unsigned { kDeniesRead, kUsesWrite, kDeniesDelete, kDeniesWrite, kUsesRead, kUsesDelete };

constexpr unsigned BitOf(Byte inByte, unsigned inKind, unsigned inKinds) noexcept
{
    return (inKinds & inKind) != 0 ? 1u << inByte : 0;
}

constexpr unsigned UseBytes(unsigned inKinds) noexcept
{
    return BitOf(kUsesRead, kShareRead, inKinds) | BitOf(kUsesWrite, kShareWrite, inKinds)
           | BitOf(kUsesDelete, kShareDelete, inKinds);
}

constexpr unsigned DenyBytes(unsigned inKinds) noexcept
{
    return BitOf(kDeniesRead, kShareRead, inKinds) | BitOf(kDeniesWrite, kShareWrite, inKinds)
           | BitOf(kDeniesDelete, kShareDelete, inKinds);
}

struct flock LockOf(short inType, unsigned inFirst, unsigned inCount) noexcept
{
    struct flock lock = {};
    lock.l_type = inType;
    lock.l_whence = SEEK_SET;
    lock.l_start = kFirstByte + static_cast<off_t>(inFirst);
    lock.l_len = static_cast<off_t>(inCount);
    return lock;
}

// Calls inCall(first, count) for each run of set bits, until one call returns false.
template <class Call>
bool ForEachRun(unsigned inBytes, Call inCall)
{
    for (unsigned first = 0; first < kByteCount; ++first) {
        unsigned count = 0;
        while ((inBytes >> (first + count) & 1u) != 0) {
            ++count;
        }
        if (count != 0 && !inCall(first, count)) {
            return false;
        }
        first += count;
    }
    return true;
}

enum class Outcome { kDone, kConflict, kNoLocks };

constexpr int kTries = 12;

Outcome Lock(int inDescriptor, short inType, unsigned inFirst, unsigned inCount) noexcept
{
    struct flock lock = LockOf(inType, inFirst, inCount);
    if (System().mLockRange(inDescriptor, F_OFD_SETLK, &lock) == 0) {
        return Outcome::kDone;
    }
    return errno == EAGAIN || errno == EACCES ? Outcome::kConflict : Outcome::kNoLocks;
}

// Acquires read locks on the bytes. Returns kConflict only if another open file holds a write lock on one of them.
Outcome LockShared(int inDescriptor, unsigned inBytes) noexcept
{
    Outcome outcome = Outcome::kDone;
    ForEachRun(inBytes, [&](unsigned inFirst, unsigned inCount) {
        outcome = Lock(inDescriptor, F_RDLCK, inFirst, inCount);
        return outcome == Outcome::kDone;
    });
    return outcome;
}

// Unlocks everything at once: unlocking only a part would make the kernel allocate memory for the rest. The
// descriptor and its locks belong to this holder.
void UnlockAll(int inDescriptor) noexcept
{
    struct flock lock = {};
    lock.l_type = F_UNLCK;
    lock.l_whence = SEEK_SET;
    System().mLockRange(inDescriptor, F_OFD_SETLK, &lock);
}

// Returns true if another file description holds a lock on one of the bytes.
bool IsHeld(int inDescriptor, unsigned inFirst, unsigned inCount) noexcept
{
    struct flock lock = LockOf(F_WRLCK, inFirst, inCount);
    return System().mLockRange(inDescriptor, F_OFD_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
}

bool IsAnyHeld(int inDescriptor, unsigned inBytes) noexcept
{
    // Usually no other handle has the file open, so this first query is enough.
    return IsHeld(inDescriptor, 0, kByteCount)
           && !ForEachRun(inBytes, [inDescriptor](unsigned inFirst, unsigned inCount) {
                  return !IsHeld(inDescriptor, inFirst, inCount);
              });
}

// Returns true if the conflict persists. A holder whose registration fails releases its locks almost at once.
bool ConflictLasts(int inDescriptor, unsigned inBytes) noexcept
{
    constexpr int kPolls = 3;
    for (int poll = 0; poll < kPolls; ++poll) {
        if (!IsAnyHeld(inDescriptor, inBytes)) {
            return false;
        }
        std::this_thread::yield();
    }
    return true;
}

// Waits for a random time, so that two holders that conflict with each other do not retry at the same moment.
void WaitBeforeTry(int inTry, const void* inSelf)
{
    const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
    const std::uint64_t mixed =
        (static_cast<std::uint64_t>(now) ^ reinterpret_cast<std::uintptr_t>(inSelf)) * 0x9E3779B97F4A7C15u;
    std::this_thread::sleep_for(std::chrono::microseconds((mixed >> 48) % (std::uint64_t{4} << inTry)));
}

// For a holder that shares nothing and so excludes all others. Acquiring one write lock on all bytes tests for them and
// excludes them. The lock needs a writable descriptor; returns kNoLocks if inDescriptor is not writable.
Outcome LockExclusively(int inDescriptor)
{
    constexpr unsigned kAllBytes = (1u << kByteCount) - 1;
    for (int attempt = 0; attempt < kTries; ++attempt) {
        const Outcome outcome = Lock(inDescriptor, F_WRLCK, 0, kByteCount);
        if (outcome != Outcome::kConflict) {
            return outcome;
        }
        if (ConflictLasts(inDescriptor, kAllBytes)) {
            return Outcome::kConflict;
        }
        WaitBeforeTry(attempt, &attempt);
    }
    return Outcome::kConflict;
}

// Locks the bytes of inHeld unless another holder has locked one of inTested.
Outcome LockUnlessHeld(int inDescriptor, unsigned inHeld, unsigned inTested)
{
    for (int attempt = 0; attempt < kTries; ++attempt) {
        const Outcome outcome = LockShared(inDescriptor, inHeld);
        if (outcome == Outcome::kDone && !IsAnyHeld(inDescriptor, inTested)) {
            return outcome;
        }
        UnlockAll(inDescriptor); // also releases locks acquired before a refusal
        if (outcome != Outcome::kDone) {
            return outcome;
        }
        if (ConflictLasts(inDescriptor, inTested)) {
            return Outcome::kConflict;
        }
        WaitBeforeTry(attempt, &attempt);
    }
    return Outcome::kConflict;
}

Outcome LockForShareMode(int inDescriptor, unsigned inUses, unsigned inShares, bool inCanWrite)
{
    const unsigned unshared = ~inShares & kShareAll;
    const Outcome exclusive = inCanWrite && unshared == kShareAll ? LockExclusively(inDescriptor) : Outcome::kNoLocks;
    if (exclusive != Outcome::kNoLocks) {
        return exclusive;
    }
    return LockUnlessHeld(inDescriptor, UseBytes(inUses) | DenyBytes(unshared), DenyBytes(inUses) | UseBytes(unshared));
}

} // namespace

SystemError ShareHolder::Enter(const FileIdentity& inFile, unsigned inUses, unsigned inShares, bool inCanWrite)
{
    if (inUses == kShareNothing) {
        return kNoError;
    }
    ShareBucket& bucket = BucketOf(inFile);
    const MutexLock lock(bucket.mMutex);
    if (bucket.HasConflict(inFile, inUses, inShares)) {
        return kErrorSharingViolation;
    }
    if (mOpen) {
        const Outcome outcome = LockForShareMode(mOpen.Get(), inUses, inShares, inCanWrite);
        if (outcome == Outcome::kConflict) {
            return kErrorSharingViolation;
        }
        mHasLocks = outcome == Outcome::kDone;
    }
    mFile = inFile;
    mUses = inUses;
    mShares = inShares;
    mIsRegistered = true;
    bucket.Add(*this);
    return kNoError;
}

int ShareHolder::Release() noexcept
{
    if (!mIsRegistered) {
        return mOpen.Close();
    }
    ShareBucket& bucket = BucketOf(mFile);
    const MutexLock lock(bucket.mMutex);
    // A process just forked by the host may have a copy of the descriptor; closing would then not release the locks.
    if (mHasLocks) {
        UnlockAll(mOpen.Get());
    }
    const int failure = mOpen.Close();
    bucket.Remove(*this);
    mIsRegistered = false;
    mHasLocks = false;
    return failure;
}

} // namespace Linux
} // namespace ORL
