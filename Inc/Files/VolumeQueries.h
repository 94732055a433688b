// Functions for volume roots, and disk functions that take the system calls as parameters, for tests.
#pragma once

#include <ORLResult.h>
#include <Platform/Disks.h>
#include <tvxcore/String.h>
#include <tvxcore/Types.h>

namespace ORL {
namespace DiskUtils {

/// Returns the root of the path's volume in extended form, with a trailing backslash; empty for an empty path.
UTF16String GetVolumeRootPath(const UTF16String& inPath);

/// The system calls that GetMaxFileSize uses.
struct VolumeQueries
{
    SystemError (*mGetFreeSpace)(const Platform::Volume& inVolume, unsigned __int64& outBytes);
    SystemError (*mGetFileSystemName)(const Platform::Volume& inVolume, UTF16String& outName);
};

Result GetMaxFileSize(const UTF16String& inPath, unsigned __int64& outSize, const VolumeQueries& inQueries);

} // namespace DiskUtils
} // namespace ORL
