// Floor: Files
// One open file, whole-file operations, and the block cache that a host may provide.
//
//   ORL::File file;
//   if (ORL::ResultSucceeded(ORL::File::Open(path, ORL::FileAccessFlags::kFileAccess_Read, file))) {
//       unsigned int bytesRead = 0;
//       file.Read(buffer, sizeof(buffer), bytesRead);
//   }
#pragma once

#include <ORLConfig.h>
#include <ORLInterface.h>
#include <ORLMemoryRecycler.h>
#include <ORLObjectPtr.h>
#include <ORLResult.h>
#include <tvxcore/String.h>
#include <tvxcore/Types.h>

namespace ORL {

// Flags. The values of one kind combine with |, except for dispositions.

/// Operations allowed through the handle.
struct FileAccessFlags
{
    enum Type : int { kFileAccess_Read = 1, kFileAccess_Write = 2, kFileAccess_Execute = 4 };
};

/// Operations that other handles may perform while this handle is open. All handles in the process, and in other
/// processes that use this library, honour the modes on both platforms: a conflicting open fails with
/// kSharingViolation. On Linux, programs that do not use this library are not restricted.
struct FileShareModeFlags
{
    enum Type : int { kFileShare_Read = 1, kFileShare_Write = 2, kFileShare_Delete = 4 };
};

/// How Create treats existing and missing files. Pass exactly one value.
struct FileCreateDispositionFlags
{
    enum Type : int {
        kFileCreate_New = 1,              ///< fails if the file exists
        kFileCreate_Always = 2,           ///< creates the file, or truncates an existing one
        kFileCreate_OpenAlways = 4,       ///< opens the file, or creates a missing one
        kFileCreate_OpenExisting = 8,     ///< fails if the file does not exist
        kFileCreate_TruncateExisting = 16 ///< truncates; fails if the file does not exist; needs write access
    };
};

struct FileAttributesFlags ///< Hints and modes of an open file.
{
    enum Type : int {
        kFileAttribute_Normal = 1,
        kFileAttribute_SequentialScan = 2,
        /// Bypasses the system's cache. Position, size and buffer address of each read and write must be multiples of
        /// the volume's sector size (DiskUtils::GetEfficientDiskBufferSizeFromPath); otherwise the call fails.
        kFileAttribute_NoBuffering = 4,
        /// Allows opening a directory.
        kFileAttribute_BackupSemantics = 8
    };
};

/// The origin of an offset.
struct FilePointerMoveMethod
{
    enum Type : int { kFilePointer_Begin = 0, kFilePointer_Current = 1, kFilePointer_End = 2 };
};

#define ORL_COMBINE_FLAGS(scope)                                                                                       \
  constexpr scope::Type operator|(scope::Type inLeft, scope::Type inRight) noexcept                                    \
  {                                                                                                                    \
    return static_cast<scope::Type>(static_cast<int>(inLeft) | static_cast<int>(inRight));                             \
  }
ORL_COMBINE_FLAGS(FileAccessFlags)
ORL_COMBINE_FLAGS(FileShareModeFlags)
ORL_COMBINE_FLAGS(FileCreateDispositionFlags)
ORL_COMBINE_FLAGS(FileAttributesFlags)
#undef ORL_COMBINE_FLAGS

/// A host's cache for the blocks of one file. A host derives from UnknownImpl<IFileBuffer>.
///
/// Owner:    reference-counted. The host decides how many blocks to keep and when to release them.
/// Threads:  called on whichever thread reads the file.
/// Failure:  exceptions propagate to the caller that reads the file.
class ORL_API IFileBuffer : public ORLUnknown
{
public:
    /// Offers the cache a block that was read. inPosition is its position in the file, a multiple of the block size.
    /// The cache may keep a counted reference. Bytes past the end of the file are undefined.
    virtual void AddBlock(ObjectPtr<MemoryBufferWrapper> inBlock, __int64 inPosition) = 0;

    /// Stores the block at inPosition in outBlock. Returns success, or a failure if the block is not cached.
    virtual Result GetBlock(__int64 inPosition, ObjectPtr<MemoryBufferWrapper>& outBlock) = 0;
};

/// Creates a block cache for each file that is to be read through one. Called on the thread that opens the file;
/// exceptions propagate to the caller of Create or Open. A host derives from UnknownImpl<IFileBufferFactory>.
class ORL_API IFileBufferFactory : public ORLUnknown
{
public:
    /// Returns a buffer for one file, or null for no buffer.
    virtual InterfaceRef<IFileBuffer, IFileBuffer> CreateFileBuffer() = 0;
};

namespace Foundation {

/// Sets the host's factory for all files opened from now on; null removes it. The previous factory is released under
/// the foundation lock, so its destructor must not wait for a thread that starts or stops the library or sets a
/// factory. Thread-safe.
ORL_API void SetFileBufferFactory(InterfaceRef<IFileBufferFactory, IFileBufferFactory> inFactory);

} // namespace Foundation

/// One file. Unless documented otherwise, paths must be rooted; plain ones are converted to extended form (\\?\).
///
/// Block cache: if a factory is set and a file is opened for reading only, without kFileShare_Write and without
/// kFileAttribute_NoBuffering, it bypasses the system's cache. The file is then read in whole blocks of at least 64 KiB
/// through the buffer that the factory created for it. The File object then tracks the position itself, never past
/// the end of the file. The block cache allocates its blocks from the library's pool, so the library must be started.
///
/// Requires: an open file for every operation but Create, IsOpen, Close, GetPlatformFileHandle and the static ones;
///           otherwise the input contract "IsOpen()" fires. Create requires that no file is open.
/// Owner:    the object owns its handle; the destructor closes it.
/// Failure:  unless documented otherwise, returns Win::SystemErrorToORLResult of the system's error. Several
///           operations return a bare -1 instead. kSuccess is 0.
/// Threads:  not thread-safe: one thread at a time per object. The static operations are thread-safe.
/// On Linux: see FileShareModeFlags. A file without any write permission is read-only: it cannot be opened to write,
///           truncated, copied over, deleted or replaced, not even by the superuser. Pipes and sockets cannot be
///           opened.
class ORL_API File
{
public:
    /// Constructs an object without an open file.
    File();

    /// Calls Close.
    ~File();

    File(const File&) = delete;
    File& operator=(const File&) = delete;

    /// Opens or creates a file. Returns kPathNotFound for a path that is not rooted. Opening a directory requires
    /// kFileAttribute_BackupSemantics, and fires an assertion unless inAllowDirectory is true. With kFileCreate_New
    /// returns kGeneralFailure (system error 80) for an existing file.
    Result Create(const UTF16String& inFullPath, FileAccessFlags::Type inAccess, FileShareModeFlags::Type inShareMode,
                  FileCreateDispositionFlags::Type inDisposition, FileAttributesFlags::Type inAttributes,
                  bool inAllowDirectory);

    bool IsOpen() const; ///< returns whether a file is open

    /// Closes the file. Does nothing if no file is open.
    void Close();

    /// Reads at the position and advances it. A read that reaches the end of the file is short; a read at or past the
    /// end returns kSuccess with 0 bytes. After a failure outBytesRead is what the system reported, and the position of
    /// a file with a block cache is unspecified.
    Result Read(void* outBuffer, unsigned int inCount, unsigned int& outBytesRead);

    /// Writes at the position and advances it. outBytesWritten is what the system reported, even after a failure.
    Result Write(const void* inBuffer, unsigned int inCount, unsigned int& outBytesWritten);

    /// Moves the position. Always returns kSuccess: a seek that the system rejects (before the beginning) is not
    /// reported and keeps the position. With a block cache the position is clamped to the file's size, and an offset
    /// from the end counts backwards regardless of its sign.
    Result SetFilePointer(__int64 inOffset, FilePointerMoveMethod::Type inMethod);

    /// Stores the position. Always returns kSuccess, but leaves outPosition untouched if the system reports an error.
    Result GetFilePointer(__int64& outPosition);

    /// Truncates or extends the file to the position. Returns 0, or -1 on failure.
    Result SetEndOfFile();

    /// Returns the size in bytes, or 4294967295 if the system reports an error.
    unsigned __int64 SizeOnDisk() const;

    /// Stores the time of the last write, in units of 100 ns since 1 January 1601 UTC.
    Result GetLastModificationTime(unsigned __int64& outTime) const;

    /// Returns the system's handle, or -1 if no file is open. On Linux the handle is a pointer to the file descriptor,
    /// an int that the File object owns.
    void* GetPlatformFileHandle();

    /// Opens an existing file. Other handles may read, write and delete it while it is open. Returns -1 if the file
    /// does not exist.
    static Result Open(const UTF16String& inPath, FileAccessFlags::Type inAccess, File& ioFile);

    static Result Delete(const UTF16String& inPath); ///< deletes a file; fails if there is none

    /// Copies a file with its last-write time and its read-only attribute. Overwrites an existing destination. Does
    /// not extend plain paths. On Linux also copies the permissions, and lets the kernel copy the data if possible.
    static Result Copy(const UTF16String& inSource, const UTF16String& inDestination);

    /// Same as Copy, but calls inCallback with inData and the fraction copied, from 0 to 1: at the beginning, during
    /// the copy and at the end. For an empty file the fraction is not a number (NaN). If the callback returns false,
    /// stops copying, removes the destination and returns kOperationAborted. The callback must not be null and must not
    /// throw. Returns kFileNotFound, kPathNotFound or kAccessDenied for these errors, and kDiskFull for any other.
    static Result CopyWithProgress(const UTF16String& inSource, const UTF16String& inDestination,
                                   bool (*inCallback)(float, void*), void* inData);

    /// Renames a file or directory. Files may also be moved to another volume. Returns kAlreadyExists if the
    /// destination exists. Does not extend plain paths.
    static Result Move(const UTF16String& inSource, const UTF16String& inDestination);

    /// Replaces the real file, which must exist, with a finished temporary file, and removes the temporary name. On
    /// success the new contents and their folder have been synced to disk. The real name always refers to the complete
    /// old or the complete new contents. After a failure nothing is retried, and both files keep their contents.
    /// Neither file may be open, unless the real one is open only through handles with kFileShare_Delete.
    static Result SwapTempFile(const UTF16String& inTempPath, const UTF16String& inRealPath);

    /// Returns an unused path in the same folder: "photo~1.jpg" for "photo.jpg", else "photo~2.jpg" and so on.
    /// First truncates the name so that name and extension have at most 250 units. Creates nothing, so another caller
    /// may create that file first.
    static UTF16String MakeUniqueTempPath(const UTF16String& inPath);

    /// Stores the size of a file, open or not. Returns kFileNotFound on any failure. Does not extend a plain path.
    static Result SizeOnDisk(const UTF16String& inPath, unsigned __int64& outSize);

    /// Stores the time of a file's last write, like the member function.
    static Result GetLastModificationTime(const UTF16String& inPath, unsigned __int64& outTime);

    /// Same as GetLastModificationTime, but also for directories.
    static Result GetLastModificationTimeForFolder(const UTF16String& inPath, unsigned __int64& outTime);

    /// Always returns 0: Windows and Linux do not store file types.
    static unsigned int GetOSFileType(const UTF16String& inPath);

private:
    struct PrivateImpl;

    PrivateImpl* mImpl;
};

} // namespace ORL
