// Declares completion ports. One implementation is based on io_uring, the other on threads.
#pragma once

#include "../Files/LinuxShareModes.h"

#include <Platform/AsyncFiles.h>

#include <cstddef>
#include <cstdint>
#include <memory>

namespace ORL {
namespace Linux {

struct AsyncFile;

/// A read, from its start to its completion. mOverlapped contains its position in the file.
struct ReadRequest
{
    AsyncFile* mFile;
    void* mBuffer;
    std::uint32_t mSize;
    AsyncFiles::Platform::Overlapped* mOverlapped;
};

inline std::uint64_t PositionOf(const AsyncFiles::Platform::Overlapped& inOverlapped)
{
    return std::uint64_t{inOverlapped.mPositionHigh} << 32 | inOverlapped.mPositionLow;
}

/// A completion port. One thread starts reads, any thread may post packets, and one thread gets the completions.
class CompletionPort
{
public:
    virtual ~CompletionPort() = default;

    /// Makes Get return false from now on. A thread that waits in Get returns immediately or with the next completion.
    virtual void Close() = 0;

    /// Returns 997 if the read is in progress or batched, otherwise the error that prevented the start.
    virtual SystemError Start(const ReadRequest& inRequest) = 0;

    /// Submits the batched reads. Returns how many of the newest reads the system refused, and stores the reason in
    /// outError.
    virtual std::size_t Submit(SystemError& outError) = 0;

    /// Returns false if the system refuses the packet.
    virtual bool PostEmptyPacket() = 0;

    /// Waits for the next packet. Returns false if the read failed, or, with a null mOverlapped, if the port failed.
    virtual bool Get(AsyncFiles::Platform::Completion& outCompletion) = 0;

    virtual const char* Describe() const = 0;
};

/// The open ports of the process, by handle. The handle of a closed port is never reused: Find returns null for it.
/// Thread-safe.
class OpenPorts
{
public:
    /// Throws std::bad_alloc.
    static AsyncFiles::Platform::Handle Add(const std::shared_ptr<CompletionPort>& inPort);

    /// Returns null for a handle without a port.
    static std::shared_ptr<CompletionPort> Find(AsyncFiles::Platform::Handle inHandle);

    static std::shared_ptr<CompletionPort> Remove(AsyncFiles::Platform::Handle inHandle);
};

/// A file opened for asynchronous reads. The file keeps its port alive.
struct AsyncFile
{
    ShareHolder mShares;     // owns the file, and registers the reader with the share modes
    bool mIsRegular = false; // reads are checked against the end of the file; false for block devices
    bool mUsesCache = false;
    std::uint32_t mAlignment = 0;
    std::shared_ptr<CompletionPort> mPort;

    int File() const noexcept { return mShares.File(); }
};

/// Creates a port based on io_uring. If the kernel refuses the ring or lacks an operation, returns null and stores the
/// errno in outError. Throws std::bad_alloc.
std::shared_ptr<CompletionPort> MakeRingPort(int& outError);

/// Creates a port based on a few threads that call pread. inRefusal is the errno with which the ring was refused, or 0
/// if no ring was requested. Throws std::bad_alloc.
std::shared_ptr<CompletionPort> MakeThreadPort(int inRefusal);

/// Decides whether to repeat a system call that was interrupted or failed because of a temporary shortage.
class Retries
{
public:
    /// Returns true if the caller should repeat a call that failed with this errno. May wait briefly before it returns.
    bool IsWorthwhile(int inErrno);

private:
    int mLeft = 2000; // remaining tries, one millisecond apart
};

/// Reads on the calling thread. Returns the number of bytes read, or a negated errno.
std::int64_t ReadNow(const ReadRequest& inRequest);

/// Fills outCompletion for a completed read. inReturned is the number of bytes, or a negated errno. Returns false for
/// a failed read.
bool CompleteRead(const AsyncFile& inFile, AsyncFiles::Platform::Overlapped& inOverlapped, std::int64_t inReturned,
                  AsyncFiles::Platform::Completion& outCompletion);

} // namespace Linux
} // namespace ORL
