// Floor: Files
// The volume of a path: free space, sector size, largest file size; and the formatting of sizes.
//
// Sizes are in bytes. Thread-safe; takes no lock. On Linux the functions query the file system that holds the path,
// even if it is mounted below the root of the path's drive.
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

/// Formats a size in its largest unit: terabytes with two fraction digits, gigabytes and megabytes with one, in the
/// user's number format; kilobytes (truncated) and bytes as whole numbers. The unit is localised.
ORL_API UTF16String MakeDiskSpaceString(unsigned __int64 inBytes);

/// Returns the number of bytes available to this user on the path's volume, or 0 on failure.
ORL_API unsigned __int64 GetFreeSpaceFromPath(const UTF16String& inPath);

/// Stores the volume's sector size, at least 512: the unit of unbuffered reads. outSize is 0 on failure.
ORL_API Result GetEfficientDiskBufferSizeFromPath(const UTF16String& inPath, unsigned int& outSize);

/// Stores the size of the largest file that fits on the volume now: the free space, limited to 4294967295 on file
/// systems of the FAT family.
/// outSize is untouched on failure.
ORL_API Result GetMaxFileSize(const UTF16String& inPath, unsigned __int64& outSize);

/// Stores the name of the volume's file system as reported by the system ("NTFS", "ext4"). outName is untouched on
/// failure.
ORL_API Result GetFileSystemName(const UTF16String& inPath, UTF16String& outName);

} // namespace DiskUtils

namespace PathUtils {

/// Same as DiskUtils::GetFreeSpaceFromPath.
ORL_API unsigned __int64 GetFreeDriveSpace(const UTF16String& inPath);

} // namespace PathUtils
} // namespace ORL
