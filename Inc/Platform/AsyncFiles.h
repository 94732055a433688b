// Floor: Platform
// The system functions for asynchronous unbuffered reads: a port that collects completions, files whose reads report to
// it, and a plain thread that drains it.
//
// On Windows these are native calls. On other systems a port is any implementation with these guarantees:
//   - a started read is reported exactly once, through the port that its file is attached to;
//   - completions arrive in any order; an empty packet arrives after those that were queued before it;
//   - a port lives until it and the last file attached to it have been closed.
//
// Handles are opaque. Null means no handle; InvalidHandle() is the value of a file handle while no file is open.
#pragma once

#include <Platform/SystemErrors.h>
#include <tvxcore/String.h>

#include <cstddef>
#include <cstdint>

namespace ORL {
namespace AsyncFiles {
namespace Platform {

using Handle = void*;

inline Handle InvalidHandle()
{
    return reinterpret_cast<Handle>(static_cast<std::intptr_t>(-1));
}

/// The system's state of one read in flight, in the layout of Windows. The caller sets the position and zeroes
/// everything else; the system uses the two system words until the read has completed.
struct Overlapped
{
    std::uintptr_t mSystemWord1;
    std::uintptr_t mSystemWord2;
    std::uint32_t mPositionLow;
    std::uint32_t mPositionHigh;
    void* mEvent; // unused: completions go to the port
};

/// A packet from a port.
struct Completion
{
    Overlapped* mOverlapped;                          // null for an empty packet
    std::uint32_t mBytesRead;                         // 0 for a read that failed
    SystemError mStartError = SystemErrors::kNoError; // start error detected on completion
};

/// Creates a port that one thread at a time drains. Returns 0, or the system error with a null port.
SystemError CreatePort_Impl(Handle& outPort);

/// Closes the port. Ignores null. Reads still in flight are not reported.
void ClosePort_Impl(Handle inPort);

/// Returns a short static description of the port's implementation, for a diagnostic line.
const char* DescribePort_Impl(Handle inPort);

/// Queues an empty packet after the completions already there. Returns false on failure.
bool PostEmptyPacket_Impl(Handle inPort);

/// Waits without limit for the next packet. Returns true for a successful read and for an empty packet. Returns false
/// for a failed read, and, with a null mOverlapped, if the port fails or has been closed.
bool GetCompletion_Impl(Handle inPort, Completion& outCompletion);

/// Opens an existing file for unbuffered reading; other handles may also read and write it. The path must be in
/// extended form. Returns 0 and the file, or the system error and InvalidHandle().
///
/// On file systems without unbuffered access, reads use the page cache and drop their pages afterwards.
SystemError OpenUnbuffered_Impl(const UTF16String& inNormalizedPath, Handle& outFile);

/// Closes a file that has no read in flight.
void CloseFile_Impl(Handle inFile);

/// Attaches the file to a port, which then reports its reads. A file is attached only once. Returns 0 or the system
/// error.
SystemError AttachFile_Impl(Handle inPort, Handle inFile);

/// Returns the required alignment of positions, sizes and addresses for reads of this file; 0 if only that of the
/// volume is known.
std::uint32_t GetReadAlignment_Impl(Handle inFile);

/// Starts a read of an attached file. Returns 0 or 997 (pending) if the completion will arrive through the port, else
/// an error: the read was not started, and no completion will arrive. Returns 87 if position, size or address is not a
/// multiple of the alignment, 998 if the buffer is null and the size is not 0, and on some platforms 38 for a read that
/// starts at or past the end; on others such a read fails on completion. A buffer that is not writable fails with 998,
/// now or in the completion's mStartError. A read across the end returns fewer bytes.
///
/// A platform may delay a read until SubmitReads_Impl, which the caller must call. Only one thread may start reads.
SystemError StartRead_Impl(Handle inFile, void* outBuffer, std::uint32_t inSize, Overlapped* ioOverlapped);

/// Maximum number of delayed reads.
inline constexpr std::size_t kMaxBatchedReads = 32;

/// Submits the delayed reads to the system. Returns how many reads the system rejected, with the reason in outError;
/// these are the last reads started before this call. A delayed read may complete before this call, because posting an
/// empty packet also submits it.
std::size_t SubmitReads_Impl(SystemError& outError);

/// Starts a plain thread. Returns 0 and the thread, or the system error with a null thread.
SystemError StartThread_Impl(const char* inName, void (*inBody)(void*), void* inArgument, Handle& outThread);

/// Waits without limit for the thread to exit. Ignores null.
void WaitForThread_Impl(Handle inThread);

/// Closes the handle of the thread, which keeps running if it has not exited. Ignores null.
void CloseThread_Impl(Handle inThread);

} // namespace Platform
} // namespace AsyncFiles
} // namespace ORL
