// Floor: Platform
// What the disk functions need of the system.
#pragma once

#include <Platform/SystemErrors.h>
#include <tvxcore/String.h>
#include <tvxcore/Types.h>

namespace ORL {
namespace DiskUtils {
namespace Platform {

/// The volume that is asked about: its root with a backslash at its end, and the path whose volume it is. At home the
/// root alone counts. On Linux a drive is a tree of many file systems, so the one that holds the path answers, or
/// would hold it: the path need not exist, the root must.
struct Volume
{
    UTF16String mRoot;
    UTF16String mPath;
};

/// Bytes of a sector: the unit of direct reads. 0 where the call fails.
SystemError GetSectorSize_Impl(const Volume& inVolume, unsigned int& outBytesPerSector);

/// Bytes free to this user. outBytes is untouched where the call fails.
SystemError GetFreeSpace_Impl(const Volume& inVolume, unsigned __int64& outBytes);

/// The file system's name; that of the FAT family begins with "FAT". outName is untouched where the call fails.
SystemError GetFileSystemName_Impl(const Volume& inVolume, UTF16String& outName);

/// Whether a path is the root of a volume, as text.
bool IsRoot_Impl(const UTF16String& inPath);

} // namespace Platform
} // namespace DiskUtils
} // namespace ORL
