#include <Platform/Disks.h>

#include "../Calls/LinuxErrors.h"
#include "../Calls/SystemCalls.h"
#include "../Paths/LinuxHostPath.h"
#include "LinuxDirectAlignment.h"

#include <Files/WindowsPathText.h>
#include <cerrno>
#include <cstdio>
#include <linux/magic.h>
#include <tvxcore/Text.h>

namespace ORL {
namespace DiskUtils {
namespace Platform {

namespace {

using namespace ORL::Linux;
using namespace SystemErrors;

struct FileSystem
{
    unsigned long mMagic;
    const char* mName;
};

// Uses literals for magic numbers that the kernel's headers do not define.
constexpr FileSystem kFileSystems[] = {
    {MSDOS_SUPER_MAGIC, "FAT32"}, {EXT4_SUPER_MAGIC, "ext4"}, {XFS_SUPER_MAGIC, "xfs"},
    {BTRFS_SUPER_MAGIC, "btrfs"}, {F2FS_SUPER_MAGIC, "f2fs"}, {0x2FC12FC1, "zfs"},
    {EXFAT_SUPER_MAGIC, "exFAT"}, {0x7366746E, "NTFS"},       {0x5346544E, "NTFS"},
    {TMPFS_MAGIC, "tmpfs"},       {RAMFS_MAGIC, "ramfs"},     {OVERLAYFS_SUPER_MAGIC, "overlay"},
    {NFS_SUPER_MAGIC, "NFS"},     {CIFS_SUPER_MAGIC, "CIFS"}, {SMB2_SUPER_MAGIC, "SMB2"},
    {SMB_SUPER_MAGIC, "SMB"},     {FUSE_SUPER_MAGIC, "fuse"}, {SQUASHFS_MAGIC, "squashfs"},
    {ISOFS_SUPER_MAGIC, "CDFS"},  {UDF_SUPER_MAGIC, "UDF"},   {PROC_SUPER_MAGIC, "proc"},
    {SYSFS_MAGIC, "sysfs"},       {V9FS_MAGIC, "9p"},
};

// Returns the name of a file system, or its magic number if it is not in the list.
UTF16String NameOf(unsigned long inMagic)
{
    for (const FileSystem& system : kFileSystems) {
        if (system.mMagic == inMagic) {
            return tvxcore::utility::AsciiToUTF16(system.mName);
        }
    }
    char number[2 + 2 * sizeof(inMagic) + 1];
    std::snprintf(number, sizeof(number), "0x%lx", inMagic);
    return tvxcore::utility::AsciiToUTF16(number);
}

bool Exists(const std::string& inPath)
{
    struct statx status;
    return System().mStatx(AT_FDCWD, inPath.c_str(), 0, STATX_TYPE, &status) == 0;
}

// Returns the path itself or its nearest existing ancestor, at most up to the root.
std::string NearestExisting(std::string inPath, const std::string& inRoot)
{
    while (inPath.size() > inRoot.size() && !Exists(inPath)) {
        const std::size_t slash = inPath.find_last_of('/', inPath.size() - 2);
        inPath.resize(slash == std::string::npos ? 0 : slash);
    }
    return inPath.size() > inRoot.size() ? inPath : inRoot;
}

// Finds the host path to query for a volume.
SystemError FindVolume(const Volume& inVolume, HostPath& outHostPath)
{
    HostPath root;
    const SystemError error = ResolveHostPath(inVolume.mRoot, root);
    if (error != kNoError) {
        return error;
    }
    if (ResolveToUsablePath(inVolume.mPath, outHostPath) == kNoError && outHostPath.mFolder
        && Exists(outHostPath.mPath)) {
        return kNoError;
    }
    HostPath path;
    const bool isInside =
        ResolveHostPath(inVolume.mPath, path) == kNoError && path.mPath.compare(0, root.mPath.size(), root.mPath) == 0;
    outHostPath = HostPath();
    outHostPath.mPath = NearestExisting(isInside ? path.mPath : root.mPath, root.mPath);
    return kNoError;
}

} // namespace

SystemError GetSectorSize_Impl(const Volume& inVolume, unsigned int& outBytesPerSector)
{
    outBytesPerSector = 0;
    HostPath path;
    const SystemError error = FindVolume(inVolume, path);
    return error != kNoError ? error : FindSectorSize(path.mPath, outBytesPerSector);
}

SystemError GetFreeSpace_Impl(const Volume& inVolume, unsigned __int64& outBytes)
{
    HostPath path;
    const SystemError error = FindVolume(inVolume, path);
    if (error != kNoError) {
        return error;
    }
    struct statvfs status;
    if (System().mStatVfs(path.mPath.c_str(), &status) != 0) {
        return SystemErrorFromErrno(errno, path.mPath);
    }
    outBytes = static_cast<unsigned __int64>(status.f_bavail) * status.f_frsize;
    return kNoError;
}

SystemError GetFileSystemName_Impl(const Volume& inVolume, UTF16String& outName)
{
    HostPath path;
    const SystemError error = FindVolume(inVolume, path);
    if (error != kNoError) {
        return error;
    }
    struct statfs status;
    if (System().mStatFs(path.mPath.c_str(), &status) != 0) {
        return SystemErrorFromErrno(errno, path.mPath);
    }
    outName = NameOf(static_cast<unsigned long>(status.f_type));
    return kNoError;
}

bool IsRoot_Impl(const UTF16String& inPath)
{
    return PathUtils::WindowsText::IsRoot(inPath);
}

} // namespace Platform
} // namespace DiskUtils
} // namespace ORL
