// What stands behind the handle of an open file.
#pragma once

#include "LinuxHostPath.h"
#include "LinuxShareModes.h"

#include <Platform/File.h>

#include <cstdint>
#include <memory>
#include <string>
#include <sys/stat.h>

namespace ORL {
namespace Linux {

struct OpenFile
{
    int mDescriptor = -1; // first: hosts reach it through the handle
    bool mMayRead = false;
    bool mMayWrite = false;
    bool mIsRegular = false;
    bool mIsUnbuffered = false;        // the alignment of reads and writes is checked
    bool mDropsPages = false;          // unbuffered where the file system refuses that: the cache is emptied behind it
    std::uint32_t mAlignment = 512;    // of unbuffered reads and writes
    std::int64_t mPosition = 0;
    std::string mNameToDelete;         // not empty: the host path that goes when the file is closed
    std::shared_ptr<const Descriptor> mFolderOfName; // through which that path leads, where it is a long one
    FileIdentity mIdentity;
    ShareHolder mShares;

    OpenFile() = default;
    ~OpenFile() { Close(); }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    /// Once; the file is closed whatever is answered.
    SystemError Close() noexcept;
};

/// The record of a handle that is not InvalidHandle().
inline OpenFile& FileOf(Files::Platform::Handle inFile)
{
    return *static_cast<OpenFile*>(inFile);
}

/// True for a handle that no file stands behind.
inline bool IsNoFile(Files::Platform::Handle inFile)
{
    return inFile == nullptr || inFile == Files::Platform::InvalidHandle();
}

inline FileIdentity IdentityOf(const struct stat& inStatus)
{
    return FileIdentity{inStatus.st_dev, inStatus.st_ino};
}

/// No write permission at all: what the home platform marks as read-only.
inline bool IsReadOnly(const struct stat& inStatus)
{
    return (inStatus.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0;
}

/// 100 ns since the beginning of 1601.
inline std::uint64_t TimeOf(const struct timespec& inTime)
{
    constexpr std::int64_t kSecondsTo1970 = 11644473600;
    return static_cast<std::uint64_t>((inTime.tv_sec + kSecondsTo1970) * 10000000 + inTime.tv_nsec / 100);
}

/// What is asked of an open, in the words of CreateFile_Impl.
struct OpenWish
{
    std::uint32_t mAccess = 0;
    std::uint32_t mShareMode = 0;
    std::uint32_t mDisposition = 0;
    std::uint32_t mFlags = 0;
    mode_t mNewMode = 0666; // of a file that is made, before the process's mask
};

/// Opens a file by its host path, as CreateFile_Impl tells; also its status and whether it was made.
SystemError OpenHostFile(const HostPath& inPath, const OpenWish& inWish, std::unique_ptr<OpenFile>& outFile,
                         struct stat& outStatus, bool& outIsNew);

/// The status of a name: of a link itself, not of what it leads to.
SystemError GetEntryStatus(const std::string& inHostPath, struct stat& outStatus);

/// Holds a name for a moment, so that it can be deleted or moved: asks for the right to use inUses, and shares
/// inShares. A link, and what cannot be opened, is held by nobody. 0, 32 or the failure to find the name.
class EntryHold
{
public:
    EntryHold() = default;
    ~EntryHold() { mShares.Release(mDescriptor); }
    EntryHold(const EntryHold&) = delete;
    EntryHold& operator=(const EntryHold&) = delete;

    SystemError Enter(const std::string& inHostPath, const struct stat& inStatus, unsigned inUses, unsigned inShares);

    /// -1 where the entry could not be opened.
    int Descriptor() const noexcept { return mDescriptor; }

    /// Why it could not; else 0.
    int OpenError() const noexcept { return mOpenError; }

private:
    int mDescriptor = -1;
    int mOpenError = 0;
    ShareHolder mShares;
};

} // namespace Linux
} // namespace ORL
