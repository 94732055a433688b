// Floor: Files
// The root of the volume that holds a path, and the disk functions over any system: tests give their own volumes.
#pragma once

#include <ORLResult.h>
#include <Platform/Disks.h>
#include <tvxcore/String.h>
#include <tvxcore/Types.h>

namespace ORL {
namespace DiskUtils {

/// The root of the path's volume in extended form, with a backslash at its end. Empty for an empty path.
UTF16String GetVolumeRootPath(const UTF16String& inPath);

/// The system's answers that GetMaxFileSize needs.
struct VolumeQueries
{
    SystemError (*mGetFreeSpace)(const Platform::Volume& inVolume, unsigned __int64& outBytes);
    SystemError (*mGetFileSystemName)(const Platform::Volume& inVolume, UTF16String& outName);
};

Result GetMaxFileSize(const UTF16String& inPath, unsigned __int64& outSize, const VolumeQueries& inQueries);

} // namespace DiskUtils
} // namespace ORL
