// Floor: Files
// One open file, whole-file operations, and the block cache that a host may lend.
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

/// What the handle may do.
struct FileAccessFlags
{
    enum Type : int { kFileAccess_Read = 1, kFileAccess_Write = 2, kFileAccess_Execute = 4 };
};

/// What others may do with the file meanwhile. Handles of the whole process, and of other processes that use this
/// library, keep to it on both platforms: an open that conflicts with one of them gives kSharingViolation. On Linux a
/// program that does not use this library is not kept out.
struct FileShareModeFlags
{
    enum Type : int { kFileShare_Read = 1, kFileShare_Write = 2, kFileShare_Delete = 4 };
};

/// What to do about a file that exists, or does not. One at a time.
struct FileCreateDispositionFlags
{
    enum Type : int {
        kFileCreate_New = 1,              ///< only if it does not exist
        kFileCreate_Always = 2,           ///< an existing file is emptied
        kFileCreate_OpenAlways = 4,       ///< an existing file is opened, a missing one made
        kFileCreate_OpenExisting = 8,     ///< only if it exists
        kFileCreate_TruncateExisting = 16 ///< only if it exists, and it is emptied; needs write access
    };
};

struct FileAttributesFlags
{
    enum Type : int {
        kFileAttribute_Normal = 1,
        kFileAttribute_SequentialScan = 2,
        /// Past the system's cache. Position, size and address of each read and write are then multiples of the
        /// volume's sector size (DiskUtils::GetEfficientDiskBufferSizeFromPath); others fail.
        kFileAttribute_NoBuffering = 4,
        /// Also opens a directory.
        kFileAttribute_BackupSemantics = 8
    };
};

/// Where an offset counts from.
struct FilePointerMoveMethod
{
    enum Type : int { kFilePointer_Begin = 0, kFilePointer_Current = 1, kFilePointer_End = 2 };
};

#define ORL_COMBINE_FLAGS(scope)                                                                              \
    constexpr scope::Type operator|(scope::Type inLeft, scope::Type inRight) noexcept                         \
    {                                                                                                         \
        return static_cast<scope::Type>(static_cast<int>(inLeft) | static_cast<int>(inRight));                \
    }
ORL_COMBINE_FLAGS(FileAccessFlags)
ORL_COMBINE_FLAGS(FileShareModeFlags)
ORL_COMBINE_FLAGS(FileCreateDispositionFlags)
ORL_COMBINE_FLAGS(FileAttributesFlags)
#undef ORL_COMBINE_FLAGS

/// A host's cache of the blocks of one file. The library calls it on whichever thread reads. How many blocks it keeps,
/// and when it lets them go, is the host's business. A host derives from UnknownImpl<IFileBuffer>.
class ORL_API IFileBuffer : public ORLUnknown
{
public:
    /// Offers a block that was read, with its position in the file: a multiple of the block size. The buffer may take
    /// a counted reference, and need not. Behind the end of the file a block's bytes mean nothing.
    virtual void AddBlock(ObjectPtr<MemoryBufferWrapper> inBlock, __int64 inPosition) = 0;

    /// Stores the block of that position and gives a success; or gives a failure when the block is not held.
    virtual Result GetBlock(__int64 inPosition, ObjectPtr<MemoryBufferWrapper>& outBlock) = 0;
};

/// Makes the cache of each file that is opened to be read through one. Called on the thread that opens the file. A host
/// derives from UnknownImpl<IFileBufferFactory>.
class ORL_API IFileBufferFactory : public ORLUnknown
{
public:
    /// A buffer for one file, or null for none.
    virtual InterfaceRef<IFileBuffer, IFileBuffer> CreateFileBuffer() = 0;
};

namespace Foundation {

/// Puts the host's factory in use for all files opened from now on; null takes the earlier one back. The earlier
/// factory is released under the foundation lock, so its destructor must not wait for another thread that starts or
/// stops the library or sets a factory. Safe from any thread.
ORL_API void SetFileBufferFactory(InterfaceRef<IFileBufferFactory, IFileBufferFactory> inFactory);

} // namespace Foundation

/// One file. Paths are rooted unless told otherwise, in plain or extended form.
///
/// The block cache: where a factory is set, a file that is opened only to read, without kFileShare_Write and without
/// kFileAttribute_NoBuffering, is read past the system's cache in whole blocks of at least 64 KiB, and each block goes
/// through the buffer that the factory made for the file. Its position is then kept here, and ends at the end of the
/// file. The block cache takes its blocks from the library's pool, so the library must be started.
///
/// Needs:    an open file for every operation but Create, IsOpen, Close, GetPlatformFileHandle and the static ones;
///           else the input contract "IsOpen()" fires. Create needs one that is not open.
/// Failure:  what Win::SystemErrorToORLResult makes of the system's error, where nothing else is told. Several
///           operations give a bare -1, and kSuccess is 0.
/// Threads:  an object belongs to one thread at a time; the static operations are safe from any thread.
/// On Linux: see FileShareModeFlags. A file without any write permission is read-only: it cannot be opened to write,
///           emptied, copied over, deleted or replaced, also not by the superuser. Pipes and sockets are not opened.
class ORL_API File
{
public:
    /// Not open.
    File();

    /// As Close.
    ~File();

    File(const File&) = delete;
    File& operator=(const File&) = delete;

    /// Opens or makes a file. A path that is not rooted gives kPathNotFound. A directory is reported by an assertion
    /// unless inAllowDirectory is true, and can be opened with kFileAttribute_BackupSemantics alone.
    /// An existing file gives kGeneralFailure for kFileCreate_New (system error 80).
    Result Create(const UTF16String& inFullPath, FileAccessFlags::Type inAccess, FileShareModeFlags::Type inShareMode,
                  FileCreateDispositionFlags::Type inDisposition, FileAttributesFlags::Type inAttributes,
                  bool inAllowDirectory);

    bool IsOpen() const;

    /// Nothing happens where no file is open.
    void Close();

    /// Reads at the position, which moves on. Fewer bytes than wanted come at the end of the file, and 0 with kSuccess
    /// behind it. After a failure outBytesRead is what the system told, and the position of a file with a block cache
    /// is unknown.
    Result Read(void* outBuffer, unsigned int inCount, unsigned int& outBytesRead);

    /// Writes at the position, which moves on. outBytesWritten is what the system told, also after a failure.
    Result Write(const void* inBuffer, unsigned int inCount, unsigned int& outBytesWritten);

    /// Moves the position. Always kSuccess: a seek that the system refuses (to before the beginning) is not told, and
    /// leaves the position. With a block cache the position is held between 0 and the file's size, and an offset from
    /// the end counts backwards whatever its sign.
    Result SetFilePointer(__int64 inOffset, FilePointerMoveMethod::Type inMethod);

    /// Always kSuccess; outPosition is untouched where the system cannot tell.
    Result GetFilePointer(__int64& outPosition);

    /// Cuts or extends the file at the position. 0 or -1.
    Result SetEndOfFile();

    /// Bytes. 4294967295 where the system cannot tell.
    unsigned __int64 SizeOnDisk() const;

    /// The last write, in units of 100 ns since the beginning of 1601, UTC.
    Result GetLastModificationTime(unsigned __int64& outTime) const;

    /// The system's handle; -1 while not open. On Linux it points to the file's descriptor, an int, which the file
    /// keeps.
    void* GetPlatformFileHandle();

    /// Opens an existing file; others may read, write and delete it meanwhile. -1 when nothing is there.
    static Result Open(const UTF16String& inPath, FileAccessFlags::Type inAccess, File& ioFile);

    static Result Delete(const UTF16String& inPath);

    /// Copies a file with its last-write time and its read-only mark; an existing destination is overwritten. Paths as
    /// they stand. On Linux the permissions come along too, and the copy is left to the kernel where it can.
    static Result Copy(const UTF16String& inSource, const UTF16String& inDestination);

    /// As Copy; calls inCallback at the beginning, as the copy goes on and at its end with the part that is done, from
    /// 0 to 1, and inData. For an empty file the part is no number (0 divided by 0). When it answers false the copy
    /// stops and the destination is removed: kOperationAborted. The callback must not be null and must not throw.
    /// Failures: kFileNotFound, kPathNotFound, kAccessDenied, kOperationAborted, and kDiskFull for every other one.
    static Result CopyWithProgress(const UTF16String& inSource, const UTF16String& inDestination,
                                   bool (*inCallback)(float, void*), void* inData);

    /// Renames a file or directory; a file may move to another volume. An existing destination gives kAlreadyExists.
    /// Paths as they stand.
    static Result Move(const UTF16String& inSource, const UTF16String& inDestination);

    /// Puts a finished temporary file in the place of the real one, which must exist; the temporary name is gone then.
    /// On success the new contents and their folder are on disk. Whatever happens, the real name holds the old contents
    /// or the new ones, whole; nothing is tried after a failure, and the contents of both files stay.
    /// Neither file may be open elsewhere, except that the real one may be open with kFileShare_Delete.
    static Result SwapTempFile(const UTF16String& inTempPath, const UTF16String& inRealPath);

    /// A free name beside the path: "photo~1.jpg" for "photo.jpg", else "photo~2.jpg" and so on. Name and extension
    /// are cut to 250 characters before that. Nothing is made: the name is free at this moment only.
    static UTF16String MakeUniqueTempPath(const UTF16String& inPath);

    /// The size of a file by its name, open or not. Every failure is kFileNotFound. The path as it stands.
    static Result SizeOnDisk(const UTF16String& inPath, unsigned __int64& outSize);

    /// The last write of a file, as the member tells it.
    static Result GetLastModificationTime(const UTF16String& inPath, unsigned __int64& outTime);

    /// The same, for a directory too.
    static Result GetLastModificationTimeForFolder(const UTF16String& inPath, unsigned __int64& outTime);

    /// Always 0: these systems keep no types of files.
    static unsigned int GetOSFileType(const UTF16String& inPath);

private:
    struct PrivateImpl;

    PrivateImpl* mImpl;
};

} // namespace ORL
