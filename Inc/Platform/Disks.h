// Floor: Platform
// The system functions for volumes.
#pragma once

#include <Platform/SystemErrors.h>
#include <tvxcore/String.h>
#include <tvxcore/Types.h>

namespace ORL {
namespace DiskUtils {
namespace Platform {

/// The volume to query: its root with a trailing backslash, and a path on it. On Windows only the root is used. On
/// Linux a drive is a tree of many file systems, so the functions query the one that holds the path, or would hold it.
/// The path need not exist; the root must.
struct Volume
{
    UTF16String mRoot;
    UTF16String mPath;
};

/// Stores the sector size in bytes, the unit of direct reads; 0 on failure.
SystemError GetSectorSize_Impl(const Volume& inVolume, unsigned int& outBytesPerSector);

/// Stores the number of free bytes that this user may allocate. outBytes is untouched on failure.
SystemError GetFreeSpace_Impl(const Volume& inVolume, unsigned __int64& outBytes);

/// Stores the file system's name; names of the FAT family begin with "FAT". outName is untouched on failure.
SystemError GetFileSystemName_Impl(const Volume& inVolume, UTF16String& outName);

/// Returns whether a path is the root of a volume. Examines only the string.
bool IsRoot_Impl(const UTF16String& inPath);

} // namespace Platform
} // namespace DiskUtils
} // namespace ORL
