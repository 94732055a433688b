// Floor: Files
// The volume that holds a path: free space, sector size, largest file; and a short text for a size in bytes.
//
// Sizes are bytes. Every function is safe from any thread and takes no lock. On Linux the file system that holds the
// path answers, also where it is mounted below the root of the path's drive.
#pragma once

#include <ORLConfig.h>
#include <ORLConstants.h>
#include <ORLResult.h>
#include <tvxcore/String.h>
#include <tvxcore/Types.h>

namespace ORL {
namespace DiskUtils {

ORL_CONSTANT unsigned __int64 kSize_kiloByte = 1024;
ORL_CONSTANT unsigned __int64 kSize_megaByte = 1048576;
ORL_CONSTANT unsigned __int64 kSize_gigaByte = 1073741824;
ORL_CONSTANT unsigned __int64 kSize_teraByte = 1099511627776;

/// A size with the largest unit that it reaches: terabytes with two fraction digits, gigabytes and megabytes with one,
/// in the user's number format; kilobytes and bytes whole, kilobytes cut off. The unit is localised.
ORL_API UTF16String MakeDiskSpaceString(unsigned __int64 inBytes);

/// Bytes free to this user on the path's volume. 0 on failure.
ORL_API unsigned __int64 GetFreeSpaceFromPath(const UTF16String& inPath);

/// The volume's sector size, at least 512: the unit of unbuffered reads. outSize is 0 on failure.
ORL_API Result GetEfficientDiskBufferSizeFromPath(const UTF16String& inPath, unsigned int& outSize);

/// The largest file that fits on the volume now: the free space, but no more than 4294967295 on the FAT family.
/// outSize is untouched on failure.
ORL_API Result GetMaxFileSize(const UTF16String& inPath, unsigned __int64& outSize);

/// The name of the volume's file system, as the system gives it ("NTFS", "ext4"). outName is untouched on failure.
ORL_API Result GetFileSystemName(const UTF16String& inPath, UTF16String& outName);

} // namespace DiskUtils

namespace PathUtils {

/// The same as DiskUtils::GetFreeSpaceFromPath.
ORL_API unsigned __int64 GetFreeDriveSpace(const UTF16String& inPath);

} // namespace PathUtils
} // namespace ORL
