#include "LinuxShareModes.h"

#include "SystemCalls.h"

#include <cerrno>
#include <chrono>
#include <thread>
#include <type_traits>

namespace ORL {
namespace Linux {

// The holders of the files whose identity leads here. Never destroyed: files may be closed after the statics are gone.
struct ShareBucket
{
    std::mutex mMutex;
    ShareHolder* mFirst = nullptr;

    bool HasConflict(const FileIdentity& inFile, unsigned inUses, unsigned inShares) const noexcept
    {
        for (const ShareHolder* holder = mFirst; holder != nullptr; holder = holder->mNext) {
            const bool collides = (holder->mUses & ~inShares) != 0 || (inUses & ~holder->mShares) != 0;
            if (collides && holder->mFile == inFile) {
                return true;
            }
        }
        return false;
    }

    void Add(ShareHolder& ioHolder) noexcept
    {
        ioHolder.mNext = mFirst;
        ioHolder.mPrevious = nullptr;
        if (mFirst != nullptr) {
            mFirst->mPrevious = &ioHolder;
        }
        mFirst = &ioHolder;
    }

    void Remove(ShareHolder& ioHolder) noexcept
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

// The bytes stand in an order in which those of the usual opens are neighbours and so take one call.
constexpr off_t kFirstByte = off_t{1} << 62;
constexpr unsigned kByteCount = 6;
enum Byte : unsigned { kKeepsReaders, kUsesWrite, kKeepsDeleters, kKeepsWriters, kUsesRead, kUsesDelete };

constexpr unsigned BitOf(Byte inByte, unsigned inKind, unsigned inKinds) noexcept
{
    return (inKinds & inKind) != 0 ? 1u << inByte : 0;
}

constexpr unsigned UseBytes(unsigned inKinds) noexcept
{
    return BitOf(kUsesRead, kShareRead, inKinds) | BitOf(kUsesWrite, kShareWrite, inKinds)
           | BitOf(kUsesDelete, kShareDelete, inKinds);
}

constexpr unsigned KeepBytes(unsigned inKinds) noexcept
{
    return BitOf(kKeepsReaders, kShareRead, inKinds) | BitOf(kKeepsWriters, kShareWrite, inKinds)
           | BitOf(kKeepsDeleters, kShareDelete, inKinds);
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

// Calls inCall(first, count) for each run of set bits, until one answers false.
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

// A conflict here is one with somebody who has the file for himself.
Outcome Take(int inDescriptor, unsigned inBytes) noexcept
{
    Outcome outcome = Outcome::kDone;
    ForEachRun(inBytes, [&](unsigned inFirst, unsigned inCount) {
        outcome = Lock(inDescriptor, F_RDLCK, inFirst, inCount);
        return outcome == Outcome::kDone;
    });
    return outcome;
}

// Everything at once: the system asks for no memory then, as it does to keep the ends of what is cut out. The descriptor
// is ours, and so are its locks.
void Drop(int inDescriptor) noexcept
{
    struct flock lock = {};
    lock.l_type = F_UNLCK;
    lock.l_whence = SEEK_SET;
    System().mLockRange(inDescriptor, F_OFD_SETLK, &lock);
}

// Whether another description holds a lock on one of the bytes.
bool IsHeld(int inDescriptor, unsigned inFirst, unsigned inCount) noexcept
{
    struct flock lock = LockOf(F_WRLCK, inFirst, inCount);
    return System().mLockRange(inDescriptor, F_OFD_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
}

bool IsAnyHeld(int inDescriptor, unsigned inBytes) noexcept
{
    // Usually nobody else has the file open, and one question tells.
    return IsHeld(inDescriptor, 0, kByteCount)
           && !ForEachRun(inBytes, [inDescriptor](unsigned inFirst, unsigned inCount) {
                  return !IsHeld(inDescriptor, inFirst, inCount);
              });
}

// Whether those in conflict stay. One that only tries to get in is gone in a moment.
bool StaysHeld(int inDescriptor, unsigned inBytes) noexcept
{
    constexpr int kLooks = 3;
    for (int look = 0; look < kLooks; ++look) {
        if (!IsAnyHeld(inDescriptor, inBytes)) {
            return false;
        }
        std::this_thread::yield();
    }
    return true;
}

// Two that keep meeting part when they wait for different times.
void WaitBeforeTry(int inTry, const void* inSelf)
{
    const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
    const std::uint64_t mixed =
        (static_cast<std::uint64_t>(now) ^ reinterpret_cast<std::uintptr_t>(inSelf)) * 0x9E3779B97F4A7C15u;
    std::this_thread::sleep_for(std::chrono::microseconds((mixed >> 48) % (std::uint64_t{4} << inTry)));
}

// Who shares nothing goes with nobody: one lock for writing says so, and takes and looks in one step. It needs a
// descriptor that can write; kNoLocks also where this one cannot.
Outcome TakeAlone(int inDescriptor)
{
    constexpr unsigned kAllBytes = (1u << kByteCount) - 1;
    for (int attempt = 0; attempt < kTries; ++attempt) {
        const Outcome outcome = Lock(inDescriptor, F_WRLCK, 0, kByteCount);
        if (outcome != Outcome::kConflict) {
            return outcome;
        }
        if (StaysHeld(inDescriptor, kAllBytes)) {
            return Outcome::kConflict;
        }
        WaitBeforeTry(attempt, &attempt);
    }
    return Outcome::kConflict;
}

// Takes the bytes of inHeld unless somebody holds one of inTested.
Outcome TakeUnlessHeld(int inDescriptor, unsigned inHeld, unsigned inTested)
{
    for (int attempt = 0; attempt < kTries; ++attempt) {
        const Outcome outcome = Take(inDescriptor, inHeld);
        if (outcome == Outcome::kDone && !IsAnyHeld(inDescriptor, inTested)) {
            return outcome;
        }
        Drop(inDescriptor); // also what a refusal half-way has left
        if (outcome != Outcome::kDone) {
            return outcome;
        }
        if (StaysHeld(inDescriptor, inTested)) {
            return Outcome::kConflict;
        }
        WaitBeforeTry(attempt, &attempt);
    }
    return Outcome::kConflict;
}

// It is closed in any case; an interruption says nothing of the file.
int CloseDescriptor(int inDescriptor) noexcept
{
    return inDescriptor < 0 || System().mClose(inDescriptor) == 0 || errno == EINTR ? 0 : errno;
}

Outcome TakeLocks(int inDescriptor, unsigned inUses, unsigned inShares, bool inCanWrite)
{
    const unsigned unshared = ~inShares & kShareAll;
    const Outcome alone = inCanWrite && unshared == kShareAll ? TakeAlone(inDescriptor) : Outcome::kNoLocks;
    if (alone != Outcome::kNoLocks) {
        return alone;
    }
    return TakeUnlessHeld(inDescriptor, UseBytes(inUses) | KeepBytes(unshared), KeepBytes(inUses) | UseBytes(unshared));
}

} // namespace

SystemError ShareHolder::Enter(int inDescriptor, const FileIdentity& inFile, unsigned inUses, unsigned inShares,
                               bool inCanWrite)
{
    if (inUses == kShareNothing) {
        return kNoError;
    }
    ShareBucket& bucket = BucketOf(inFile);
    const std::lock_guard<std::mutex> lock(bucket.mMutex);
    if (bucket.HasConflict(inFile, inUses, inShares)) {
        return kErrorSharingViolation;
    }
    if (inDescriptor >= 0) {
        const Outcome outcome = TakeLocks(inDescriptor, inUses, inShares, inCanWrite);
        if (outcome == Outcome::kConflict) {
            return kErrorSharingViolation;
        }
        mHasLocks = outcome == Outcome::kDone;
    }
    mFile = inFile;
    mUses = inUses;
    mShares = inShares;
    mIsIn = true;
    bucket.Add(*this);
    return kNoError;
}

int ShareHolder::Release(int inDescriptor) noexcept
{
    if (!mIsIn) {
        return CloseDescriptor(inDescriptor);
    }
    ShareBucket& bucket = BucketOf(mFile);
    const std::lock_guard<std::mutex> lock(bucket.mMutex);
    // Closing is not enough while a child that the host has just made still has a copy of the descriptor.
    if (inDescriptor >= 0 && mHasLocks) {
        Drop(inDescriptor);
    }
    const int failure = CloseDescriptor(inDescriptor);
    bucket.Remove(*this);
    mIsIn = false;
    mHasLocks = false;
    return failure;
}

} // namespace Linux
} // namespace ORL
