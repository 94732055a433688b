// Floor: Files
// Unbuffered reads of large files, many in flight, a callback for each.
#pragma once

#include <ORLConfig.h>
#include <tvxcore/String.h>
#include <tvxcore/Types.h>

namespace ORL {

/// Reads one file past the system's cache. Reads are queued and come back, in any order, through their callbacks.
///
/// Duties:   position, size and address of each read are multiples of GetDiskSectorSize(). Nothing here checks that;
///           the system refuses the read, and its callback gets the failure. The last read of a file asks for whole
///           sectors and comes back short. A read must start before the end of the file: on Linux one that does not
///           fails at its start, on Windows it fails when it completes (see below).
/// Owner:    the buffer stays the caller's and must live until the callback; so must the reader.
/// Threads:  reads may be queued from any thread, callbacks included. Open, Close and the destructor belong to one
///           thread at a time. Callbacks of all readers of the process run one after another on one library thread
///           (those of reads that fail to start, on another), so a slow one holds all of them up.
/// Needs:    Foundation::Initialize, with no Terminate before the last reader is closed.
/// Failure:  Open gives -1 for a path that is missing, a directory or not to be opened. A read that fails to start
///           reports through its callback with 0 bytes and the failure. A read that starts and then fails (a broken
///           disk) ends the machinery: neither it nor any later read of the process is reported, and
///           WaitForPendingReads and Close do not return.
/// Example:
///   ORL::AsyncFileReader reader;
///   if (ORL::AsyncFileReader::Open(path, reader) == ORL::kSuccess) {
///       reader.QueueReadRequest(0, 65536, buffer, &OnRead, this, nullptr, nullptr);
///       reader.WaitForPendingReads();
///   }
class ORL_API AsyncFileReader
{
public:
    /// Gets one finished read: position, size, buffer and the three user values as they were queued, the bytes read
    /// as the system reported them (fewer than asked for where the file ends), and kSuccess or the failure. It must
    /// not call WaitForPendingReads or Close on its own reader, which would wait for itself, and must not throw.
    using ReadCallback = void (*)(const AsyncFileReader* inReader, unsigned __int64 inPosition, unsigned int inSize,
                                  unsigned int inBytesRead, void* inBuffer, void* inUserData1, void* inUserData2,
                                  void* inUserData3, int inResult);

    /// No file is open.
    AsyncFileReader();

    /// As Close.
    ~AsyncFileReader();

    AsyncFileReader(const AsyncFileReader&) = delete;
    AsyncFileReader& operator=(const AsyncFileReader&) = delete;

    /// Opens a file into a reader that holds none; others may read and write the file meanwhile. Returns kSuccess;
    /// -1 when the path is missing, a directory or not to be opened; or the failure to learn the sector size, with
    /// the file left open. A reader that was closed may be opened again.
    static int Open(const UTF16String& inPath, AsyncFileReader& ioOpenedAsyncFileReader);

    /// Queues one read and returns 0; the outcome is the callback's alone, which may be null. Never touches the disk
    /// on this thread. With 2048 reads of the process in flight it waits until one has finished.
    int QueueReadRequest(unsigned __int64 inPosition, unsigned int inSize, void* inBuffer, ReadCallback inCallback,
                         void* inUserData1, void* inUserData2, void* inUserData3);

    /// Returns when no read is in flight, and every callback has returned.
    void WaitForPendingReads();

    /// Waits for pending reads, then closes the file. Nothing happens when none is open.
    void Close();

    /// Bytes, as Open learned them. 0 before.
    unsigned int GetDiskSectorSize();

private:
    struct PrivateImpl;

    PrivateImpl* mImpl;
    unsigned int mDiskSectorSize;
};

} // namespace ORL
