// Floor: Platform
// What asynchronous unbuffered reads need of the system: a port that collects completions, files whose reads report
// to it, and a plain thread to drain it.
//
// The home platform has all of this by name. Elsewhere a port is whatever keeps these promises:
//   - a read that was started reports once, through the port its file is attached to, and to nobody else;
//   - completions come in any order; an empty packet comes behind those that were there before it;
//   - a port lives until it is closed and until the last file attached to it is closed.
//
// Handles are opaque. Null is no handle; InvalidHandle() is what a file handle holds while no file is open.
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

/// What the system keeps for one read in flight. The caller hands it over with zeros and the position; the words of
/// the system are the system's until the read has completed. It has the home platform's layout.
struct Overlapped
{
    std::uintptr_t mSystemWord1;
    std::uintptr_t mSystemWord2;
    std::uint32_t mPositionLow;
    std::uint32_t mPositionHigh;
    void* mEvent; // none: completions go to the port
};

/// One packet of a port.
struct Completion
{
    Overlapped* mOverlapped;  // null for an empty packet
    std::uint32_t mBytesRead; // 0 for a read that failed
    SystemError mRefusal = SystemErrors::kNoError; // why the read has not started after all: some systems find out late
};

/// Makes a port that one thread at a time is to drain. Gives 0, or the system error and null.
SystemError CreatePort_Impl(Handle& outPort);

/// Lets go of the port. Null is ignored. Reads still in flight report to nobody.
void ClosePort_Impl(Handle inPort);

/// How the port works, in a word or two for a diagnostic line: static text.
const char* DescribePort_Impl(Handle inPort);

/// Puts an empty packet behind the completions already there. False when the system refused it.
bool PostEmptyPacket_Impl(Handle inPort);

/// Waits, without a limit, for the next packet. True for a read that succeeded and for an empty packet. False when a
/// read failed, which outCompletion then names, and when the port itself fails or has been closed, with null.
bool GetCompletion_Impl(Handle inPort, Completion& outCompletion);

/// Opens an existing file for reading past the system's cache; others may read and write it meanwhile. Takes the
/// extended form of a path. Gives 0 and the file, or the system error and InvalidHandle().
///
/// Where a file system knows no way past the cache, reads go through it and drop their pages behind themselves.
SystemError OpenUnbuffered_Impl(const UTF16String& inNormalizedPath, Handle& outFile);

/// Closes a file that has no read in flight.
void CloseFile_Impl(Handle inFile);

/// From now on reads of the file report to the port. A file is attached once. Gives 0 or the system error.
SystemError AttachFile_Impl(Handle inPort, Handle inFile);

/// What positions, sizes and addresses of reads of this file must be multiples of, where the file itself knows
/// better than its volume; else 0.
std::uint32_t GetReadAlignment_Impl(Handle inFile);

/// Starts a read of an attached file. 0 and 997 (pending): the completion will come through the port, in both cases.
/// Any other number: the read was not started, and no completion will come. That is so for a position, size or
/// address that is no multiple of the alignment (87), for bytes without a buffer (998), and may be so for a read that
/// starts at or past the end (38), which else fails when it completes. A buffer that may not be written is refused with
/// 998, here or by the completion's mRefusal. A read that crosses the end comes back short.
///
/// A platform may hold a read back until SubmitReads_Impl, which the caller owes it. One thread starts reads.
SystemError StartRead_Impl(Handle inFile, void* outBuffer, std::uint32_t inSize, Overlapped* ioOverlapped);

/// How many reads may be held back.
inline constexpr std::size_t kMostReadsHeldBack = 32;

/// Hands the system the reads that were held back. Gives how many of those started since the last call, counted from
/// the newest, the system refused after all; outError tells why. A read may complete before it is handed over here,
/// when a packet is posted behind it.
std::size_t SubmitReads_Impl(SystemError& outError);

/// Starts a plain thread. Gives 0 and the thread, or the system error and null.
SystemError StartThread_Impl(const char* inName, void (*inBody)(void*), void* inArgument, Handle& outThread);

/// Waits, without a limit, for the end of the thread. Null is ignored.
void WaitForThread_Impl(Handle inThread);

/// Lets go of the thread, which runs on if it has not ended. Null is ignored.
void CloseThread_Impl(Handle inThread);

} // namespace Platform
} // namespace AsyncFiles
} // namespace ORL
