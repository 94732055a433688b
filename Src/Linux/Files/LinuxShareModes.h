// Windows share modes, between all handles of the process and with other processes that use this library.
//
// The rule: a holder uses some kinds of access (read, write, delete) and shares some. Two holders of one file conflict
// if one of them uses a kind that the other does not share. A holder that uses nothing never conflicts.
//
// Inside the process every holder is in a list, by device and inode. Across processes it holds shared locks on bytes of
// the file itself, far past any data: one byte for each kind that it uses, one for each kind that it does not share.
// The locks belong to the open file description (F_OFD_SETLK). The locks therefore vanish with their owner, need only
// read permission, and do not interfere with the locks of other libraries in the process. An open first acquires its
// locks and then tests for conflicting locks, so of two concurrent opens at most one succeeds. An open that finds a
// conflict releases its locks and retries, unless the conflict persists. A holder that shares nothing and can write
// instead acquires one write lock on all bytes, which has the same effect in one call.
//
// If a file cannot be locked (the descriptor cannot read, or the file system has no locks), the rule holds only inside
// the process.
#pragma once

#include "LinuxDescriptor.h"

#include <Platform/SystemErrors.h>

#include <Platform/Mutex.h>
#include <cstdint>
#include <sys/types.h>
#include <utility>

namespace ORL {
namespace Linux {

/// Kinds of access, as bits.
enum Sharing : unsigned { kShareNothing = 0, kShareRead = 1, kShareWrite = 2, kShareDelete = 4, kShareAll = 7 };

/// The identity of a file.
struct FileIdentity
{
    dev_t mDevice = 0;
    ino_t mNode = 0;

    bool operator==(const FileIdentity& inOther) const noexcept
    {
        return mDevice == inOther.mDevice && mNode == inOther.mNode;
    }
};

/// A holder, which owns its open file. Different holders may be used on different threads. Not thread-safe: one
/// thread at a time per holder.
class ShareHolder
{
public:
    ShareHolder() noexcept = default;
    ~ShareHolder() { Release(); }
    ShareHolder(const ShareHolder&) = delete;
    ShareHolder& operator=(const ShareHolder&) = delete;

    /// Takes ownership of an open file, or of the empty Descriptor of a failed open. The holder must not be registered.
    void Own(Descriptor&& ioFile) noexcept { mOpen = std::move(ioFile); }

    /// Returns the descriptor, or -1 if the holder owns no open file.
    int File() const noexcept { return mOpen.Get(); }

    /// Registers the holder, which must not be registered yet. Returns 0, or returns 32 and leaves the holder
    /// unregistered. inFile is the identity of the open file, if the holder owns one. inCanWrite: that file may be open
    /// for writing.
    SystemError Enter(const FileIdentity& inFile, unsigned inUses, unsigned inShares, bool inCanWrite = false);

    /// Removes the holder and closes its file in one step. Closes the file even if the holder is not registered.
    /// Returns 0, or the errno of the close.
    int Release() noexcept;

private:
    friend struct ShareBucket;

    Descriptor mOpen; // must be first: hosts read the descriptor through a file's handle
    FileIdentity mFile;
    unsigned mUses = 0;
    unsigned mShares = 0;
    bool mIsRegistered = false;
    bool mHasLocks = false;
    ShareHolder* mNext = nullptr;
    ShareHolder* mPrevious = nullptr;
};

} // namespace Linux
} // namespace ORL
