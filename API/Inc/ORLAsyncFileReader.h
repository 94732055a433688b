// Floor: Files
// Unbuffered reads of large files: many reads in flight, one callback per read.
#pragma once

#include <ORLConfig.h>
#include <tvxcore/String.h>
#include <tvxcore/Types.h>

namespace ORL {

/// Reads one file, bypassing the system's cache. Reads are queued and complete in any order, each through its callback.
///
/// Requires: the position, size and buffer address of each read are multiples of GetDiskSectorSize(). The library does
///           not check this: the system rejects any other read, and its callback receives the failure. The last read of
///           a file must also request whole sectors, and may return fewer bytes.
///           A read must start before the end of the file. Otherwise it fails to start on Linux, and fails on
///           completion on Windows (see Failure).
/// Owner:    the caller owns the buffer. Buffer and reader must live until the callback has run.
/// Threads:  reads may be queued from any thread, callbacks included. Open, Close and the destructor: one thread at a
///           time. The callbacks of all readers in the process run one after another on one library thread, so a slow
///           callback delays all others. Callbacks for reads that fail to start run on a second library thread.
/// Needs:    Foundation::Initialize. Terminate must not be called before the last reader is closed.
/// Failure:  Open returns -1 for a path that is missing, is a directory or cannot be opened. The callback of a read
///           that fails to start receives 0 bytes and the failure. A read that starts and then fails (for example on a
///           bad disk) stops all asynchronous reads in the process: neither that read nor any later one is reported,
///           and WaitForPendingReads and Close do not return.
/// Example:
///   ORL::AsyncFileReader reader;
///   if (ORL::AsyncFileReader::Open(path, reader) == ORL::kSuccess) {
///       reader.QueueReadRequest(0, 65536, buffer, &OnRead, this, nullptr, nullptr);
///       reader.WaitForPendingReads();
///   }
class ORL_API AsyncFileReader
{
public:
    /// Receives the outcome of a read: position, size, buffer and the three user values as passed to QueueReadRequest,
    /// the number of bytes read as the system reports it (fewer than requested at the end of the file), and kSuccess or
    /// the failure. Must not throw, nor call WaitForPendingReads or Close on its reader: that deadlocks.
    using ReadCallback = void (*)(const AsyncFileReader* inReader, unsigned __int64 inPosition, unsigned int inSize,
                                  unsigned int inBytesRead, void* inBuffer, void* inUserData1, void* inUserData2,
                                  void* inUserData3, int inResult);

    /// Constructs a reader without an open file.
    AsyncFileReader();

    /// Waits for pending reads, then closes the file, as Close does.
    ~AsyncFileReader();

    AsyncFileReader(const AsyncFileReader&) = delete;
    AsyncFileReader& operator=(const AsyncFileReader&) = delete;

    /// Opens a file. The reader must be closed. Other handles may read and write the file while it is open. Returns
    /// kSuccess. Returns -1 if the path is missing, is a directory or cannot be opened. If the sector size cannot be
    /// determined, returns that error and leaves the file open. A closed reader may be reused.
    static int Open(const UTF16String& inPath, AsyncFileReader& ioOpenedAsyncFileReader);

    /// Queues one read and returns 0. The outcome is reported only to the callback, which may be null. The calling
    /// thread never accesses the disk. If the process has 2048 reads in flight, blocks until one has finished.
    int QueueReadRequest(unsigned __int64 inPosition, unsigned int inSize, void* inBuffer, ReadCallback inCallback,
                         void* inUserData1, void* inUserData2, void* inUserData3);

    /// Blocks until no read is in flight and every callback has returned.
    void WaitForPendingReads();

    /// Waits for pending reads, then closes the file. Does nothing if no file is open.
    void Close();

    /// Returns the sector size in bytes that Open determined, or 0 before Open.
    unsigned int GetDiskSectorSize();

private:
    struct PrivateImpl;

    PrivateImpl* mImpl;
    unsigned int mDiskSectorSize;
};

} // namespace ORL
