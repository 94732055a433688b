// Floor: Platform
// The system functions for files. Values are those of Windows on every platform: access, share mode, disposition and
// flags are Windows constants, failures are Windows error numbers, and times count units of 100 ns since 1 January 1601
// UTC.
//
// Share modes apply between all handles: an open whose access another handle does not share, or that does not share
// another handle's access, fails with 32. Deleting, moving or replacing a file briefly opens it with delete access.
// An open with access 0 is never checked.
//
// Paths may be plain or extended, and are used as given.
#pragma once

#include <Platform/SystemErrors.h>
#include <tvxcore/String.h>

#include <cstdint>

namespace ORL {
namespace Files {
namespace Platform {

using Handle = void*;

/// The value of a handle while no file is open.
inline Handle InvalidHandle()
{
    return reinterpret_cast<Handle>(static_cast<std::intptr_t>(-1));
}

inline constexpr std::uint32_t kGenericRead = 0x80000000;
inline constexpr std::uint32_t kGenericWrite = 0x40000000;
inline constexpr std::uint32_t kGenericExecute = 0x20000000;
inline constexpr std::uint32_t kAccessDelete = 0x00010000;

inline constexpr std::uint32_t kShareRead = 1;
inline constexpr std::uint32_t kShareWrite = 2;
inline constexpr std::uint32_t kShareDelete = 4;

inline constexpr std::uint32_t kCreateNew = 1;
inline constexpr std::uint32_t kCreateAlways = 2;
inline constexpr std::uint32_t kOpenExisting = 3;
inline constexpr std::uint32_t kOpenAlways = 4;
inline constexpr std::uint32_t kTruncateExisting = 5;

inline constexpr std::uint32_t kAttributeHidden = 0x00000002;
inline constexpr std::uint32_t kAttributeNormal = 0x00000080;
inline constexpr std::uint32_t kFlagBackupSemantics = 0x02000000;
inline constexpr std::uint32_t kFlagDeleteOnClose = 0x04000000;
inline constexpr std::uint32_t kFlagSequentialScan = 0x08000000;
inline constexpr std::uint32_t kFlagNoBuffering = 0x20000000;

inline constexpr std::uint32_t kFromBegin = 0;
inline constexpr std::uint32_t kFromCurrent = 1;
inline constexpr std::uint32_t kFromEnd = 2;

/// Opens or creates a file. Returns 0 and the file, or the error and InvalidHandle().
SystemError CreateFile_Impl(const UTF16String& inPath, std::uint32_t inAccess, std::uint32_t inShareMode,
                            std::uint32_t inDisposition, std::uint32_t inFlags, Handle& outFile);

/// Closes the file. Deletes a file that was opened with kFlagDeleteOnClose.
void CloseFile_Impl(Handle inFile);

/// Reads at the file's position and advances it. Sets outBytesRead even on failure. Reads 0 bytes past the end, without
/// an error.
SystemError ReadFile_Impl(Handle inFile, void* outBuffer, std::uint32_t inCount, std::uint32_t& outBytesRead);

/// Writes at the file's position and advances it. Sets outBytesWritten even on failure.
SystemError WriteFile_Impl(Handle inFile, const void* inBuffer, std::uint32_t inCount, std::uint32_t& outBytesWritten);

/// Moves the file's position and stores the new one, unless outPosition is null. Returns nonzero on success; 0 on
/// failure, with position and outPosition unchanged.
int SetFilePointer_Impl(Handle inFile, std::int64_t inOffset, std::uint32_t inMethod, std::int64_t* outPosition);

/// Truncates or extends the file to its position.
SystemError SetEndOfFile_Impl(Handle inFile);

/// Returns the low half of the size, and stores the high half in outHigh. Returns 0xFFFFFFFF, with outHigh untouched,
/// on failure.
std::uint32_t GetFileSize_Impl(Handle inFile, std::uint32_t& outHigh);

/// Stores the time of the last write. outTime is untouched on failure.
SystemError GetLastWriteTime_Impl(Handle inFile, std::uint64_t& outTime);

/// Stores the size of a file, open or not; 0 for a directory. outSize is untouched on failure.
SystemError GetSizeOfPath_Impl(const UTF16String& inPath, std::uint64_t& outSize);

/// Returns 5 for a directory and for a file without write permission.
SystemError DeleteFile_Impl(const UTF16String& inPath);

/// Called at least once with the size of the file and the bytes copied so far. Returning false ends the copy.
using CopyProgress = bool (*)(std::uint64_t inTotal, std::uint64_t inTransferred, void* inData);

/// Copies contents, last-write time and read-only attribute; overwrites an existing destination. inProgress may be
/// null. If inProgress ends the copy, returns 1235. A failed copy leaves no destination.
SystemError CopyFile_Impl(const UTF16String& inSource, const UTF16String& inDestination, CopyProgress inProgress,
                          void* inData);

/// Renames a file or directory. Returns 183 if the destination exists, unless it is the source itself. Files may also
/// be moved to another volume.
SystemError MoveFile_Impl(const UTF16String& inSource, const UTF16String& inDestination);

/// Whether to keep the backup of a replaced file.
enum class BackupDisposition { kKeep, kDelete };

/// Replaces a file with another one. The previous contents are moved to inBackup, which is overwritten if it exists. On
/// success contents and names have been synced to disk. The replaced name always refers to the complete old or the
/// complete new contents. If the backup fails only because its name is too long for the volume, it is kept next to the
/// replaced file under another name, and deleted on success. With kDelete every backup is deleted on success; a
/// failure to delete it is ignored. Throws std::bad_alloc only before anything has been replaced.
SystemError ReplaceFile_Impl(const UTF16String& inReplaced, const UTF16String& inReplacement,
                             const UTF16String& inBackup, BackupDisposition inBackupDisposition);

} // namespace Platform
} // namespace Files
} // namespace ORL
