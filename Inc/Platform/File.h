// Floor: Platform
// What files need of the system. Words and numbers are the home platform's on every platform: access, share mode,
// disposition and flags go in as its words, failures come back as its error numbers, times are units of 100 ns since
// the beginning of 1601, UTC.
//
// Share modes are kept between all handles: an open whose access another handle does not share, or that does not share
// another handle's access, fails with 32. To delete or move a file asks for the right to delete for a moment; so does
// to replace one. Access 0 is never checked.
//
// Paths may be plain or extended, and are taken as they stand.
#pragma once

#include <Platform/SystemErrors.h>
#include <tvxcore/String.h>

#include <cstdint>

namespace ORL {
namespace Files {
namespace Platform {

using Handle = void*;

/// What a handle holds while no file is open.
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

/// Opens or makes a file. Gives 0 and the file, or the error and InvalidHandle().
SystemError CreateFile_Impl(const UTF16String& inPath, std::uint32_t inAccess, std::uint32_t inShareMode,
                            std::uint32_t inDisposition, std::uint32_t inFlags, Handle& outFile);

/// Closes the file. One that was opened with kFlagDeleteOnClose is gone then.
void CloseFile_Impl(Handle inFile);

/// Reads at the file's position and moves it on. outBytesRead is set also after a failure. Behind the end 0 bytes are
/// read, without a failure.
SystemError ReadFile_Impl(Handle inFile, void* outBuffer, std::uint32_t inCount, std::uint32_t& outBytesRead);

/// Writes at the file's position and moves it on. outBytesWritten is set also after a failure.
SystemError WriteFile_Impl(Handle inFile, const void* inBuffer, std::uint32_t inCount,
                           std::uint32_t& outBytesWritten);

/// Moves the file's position and stores the new one, where outPosition is not null. The answer is the system's own: not
/// 0 when it was done, 0 when it was refused, and then neither position nor outPosition change.
int SetFilePointer_Impl(Handle inFile, std::int64_t inOffset, std::uint32_t inMethod, std::int64_t* outPosition);

/// Cuts or extends the file at its position.
SystemError SetEndOfFile_Impl(Handle inFile);

/// The low half of the size, and the high half in outHigh. 0xFFFFFFFF, with outHigh untouched, when it fails.
std::uint32_t GetFileSize_Impl(Handle inFile, std::uint32_t& outHigh);

/// outTime is untouched where it fails.
SystemError GetLastWriteTime_Impl(Handle inFile, std::uint64_t& outTime);

/// The size of what the path names, 0 for a directory, whether or not it is open. outSize is untouched where it fails.
SystemError GetSizeOfPath_Impl(const UTF16String& inPath, std::uint64_t& outSize);

/// A directory gives 5, a file without write permission too.
SystemError DeleteFile_Impl(const UTF16String& inPath);

/// Is called with the bytes of the file and those copied so far, at least once. False ends the copy.
using CopyProgress = bool (*)(std::uint64_t inTotal, std::uint64_t inTransferred, void* inData);

/// Copies contents, last-write time and read-only mark; an existing destination is overwritten. inProgress may be
/// null. A copy that was ended by it gives 1235. A copy that fails half-way leaves no destination.
SystemError CopyFile_Impl(const UTF16String& inSource, const UTF16String& inDestination, CopyProgress inProgress,
                          void* inData);

/// Renames a file or directory. 183 where the destination exists, unless it is the source itself. A file may move to
/// another volume.
SystemError MoveFile_Impl(const UTF16String& inSource, const UTF16String& inDestination);

/// What becomes of the earlier contents of a replaced file.
enum class BackupEnd { kStays, kIsDeleted };

/// Puts the replacement in the place of the replaced file, whose earlier contents are then inBackup, which is
/// overwritten where it exists. After success contents and names are on disk. At every moment the replaced name holds
/// the one or the other, whole. A backup whose name is too long for the volume, and for nothing else, is kept beside the
/// replaced file until then and is gone after success. With kIsDeleted every backup is gone after success, unless it
/// cannot be deleted, which is no failure. Throws std::bad_alloc only before anything has been replaced.
SystemError ReplaceFile_Impl(const UTF16String& inReplaced, const UTF16String& inReplacement,
                             const UTF16String& inBackup, BackupEnd inEnd);

} // namespace Platform
} // namespace Files
} // namespace ORL
