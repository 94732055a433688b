// The record behind the handle of an open file.
#pragma once

#include "../Paths/LinuxHostPath.h"
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
    ShareHolder mShares; // must be first: hosts read its descriptor through the handle
    bool mMayRead = false;
    bool mMayWrite = false;
    bool mIsRegular = false;
    bool mIsUnbuffered = false;     // the alignment of reads and writes is checked
    bool mDropsPages = false;       // unbuffered, but without direct I/O: drops the pages from the cache
    std::uint32_t mAlignment = 512; // alignment of unbuffered reads and writes
    std::int64_t mPosition = 0;
    std::string mNameToDelete;                       // the host path to delete on close; empty for none
    std::shared_ptr<const Descriptor> mFolderOfName; // the open folder through which a long path is resolved
    FileIdentity mIdentity;

    OpenFile() = default;
    ~OpenFile() { Close(); }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    int File() const noexcept { return mShares.File(); }

    /// Call this function once. The file is closed even if this returns an error.
    SystemError Close() noexcept;
};

/// Returns the record of a handle that is not InvalidHandle().
inline OpenFile& FileOf(Files::Platform::Handle inFile)
{
    return *static_cast<OpenFile*>(inFile);
}

/// Returns true for a handle without a file.
inline bool IsNoFile(Files::Platform::Handle inFile)
{
    return inFile == nullptr || inFile == Files::Platform::InvalidHandle();
}

inline FileIdentity IdentityOf(const struct stat& inStatus)
{
    return FileIdentity{inStatus.st_dev, inStatus.st_ino};
}

/// Returns true if the file has no write permission at all: the equivalent of the Windows read-only attribute.
inline bool IsReadOnly(const struct stat& inStatus)
{
    return (inStatus.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0;
}

/// Returns the time in 100 ns since the beginning of 1601.
inline std::uint64_t TimeOf(const struct timespec& inTime)
{
    constexpr std::int64_t kSecondsTo1970 = 11644473600;
    return static_cast<std::uint64_t>((inTime.tv_sec + kSecondsTo1970) * 10000000 + inTime.tv_nsec / 100);
}

/// The parameters of an open, with the same values as for CreateFile_Impl.
struct OpenRequest
{
    std::uint32_t mAccess = 0;
    std::uint32_t mShareMode = 0;
    std::uint32_t mDisposition = 0;
    std::uint32_t mFlags = 0;
    mode_t mNewMode = 0666; // mode of a new file, before the umask applies
};

/// Opens a file by its host path, as CreateFile_Impl does. Also returns its status and whether it was created.
SystemError OpenHostFile(const HostPath& inPath, const OpenRequest& inRequest, std::unique_ptr<OpenFile>& outFile,
                         struct stat& outStatus, bool& outIsNew);

/// Returns the status of a name; for a link, of the link itself.
SystemError GetEntryStatus(const std::string& inHostPath, struct stat& outStatus);

/// Briefly registers the access that deleting or moving a name needs. inUses is the access that it uses, inShares the
/// access that it shares. Only files and folders are registered; an entry that cannot be opened is registered only
/// inside this process. Enter returns 0, or 32 (sharing violation).
class EntryShare
{
public:
    SystemError Enter(const std::string& inHostPath, const struct stat& inStatus, unsigned inUses, unsigned inShares);

    /// Returns -1 if the entry could not be opened.
    int File() const noexcept { return mShares.File(); }

    /// Returns the errno of the failed open, or 0.
    int OpenError() const noexcept { return mOpenError; }

private:
    ShareHolder mShares;
    int mOpenError = 0;
};

} // namespace Linux
} // namespace ORL
