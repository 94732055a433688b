// What handles may do with a file beside each other: the home platform's share modes, between all handles of the
// process and with other processes that use this library.
//
// The rule: a holder uses some kinds of access (read, write, delete) and shares some. Two holders of one file are in
// conflict when one of them uses what the other does not share. A holder that uses nothing is never in conflict.
//
// Inside the process every holder is on a list, by device and inode. Across processes it holds shared locks on bytes of
// the file itself, far behind any data: one byte for each kind that it uses, one for each that it does not share. They
// belong to the open file description (F_OFD_SETLK), so they die with their owner, need no right but to read, and do
// not meddle with the locks of other libraries in the process. Who opens takes its locks first and looks for locks in
// conflict then: of two that come at once at most one gets through, and one that has to go tries again for a moment,
// unless the other is there to stay. Who shares nothing and can write takes all bytes in one lock for writing instead,
// which says the same in one call.
//
// Where a file cannot be locked (the descriptor cannot read, the file system has no locks) the rule holds inside the
// process alone.
#pragma once

#include <Platform/SystemErrors.h>

#include <cstdint>
#include <mutex>
#include <sys/types.h>

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

/// One holder. Safe to use beside other holders on other threads; one holder belongs to one thread at a time.
class ShareHolder
{
public:
    ShareHolder() noexcept = default;
    ~ShareHolder() { Release(-1); }
    ShareHolder(const ShareHolder&) = delete;
    ShareHolder& operator=(const ShareHolder&) = delete;

    /// Enters the holder, which must be out: 0, or 32 and it stays out. inDescriptor is the holder's own, of that file;
    /// -1 where there is none. inCanWrite: the descriptor may be open for writing.
    SystemError Enter(int inDescriptor, const FileIdentity& inFile, unsigned inUses, unsigned inShares,
                      bool inCanWrite = false);

    /// Takes the holder out and closes the descriptor that it entered with, both at one moment for others. Closes the
    /// descriptor also when the holder is out; -1 closes none. 0, or the errno of a close that tells of a failure.
    int Release(int inDescriptor) noexcept;

private:
    friend struct ShareBucket;

    FileIdentity mFile;
    unsigned mUses = 0;
    unsigned mShares = 0;
    bool mIsIn = false;
    bool mHasLocks = false;
    ShareHolder* mNext = nullptr;
    ShareHolder* mPrevious = nullptr;
};

} // namespace Linux
} // namespace ORL
