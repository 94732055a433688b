// The two machines behind a completion port: a ring of the kernel, and threads that read.
#pragma once

#include "LinuxShareModes.h"

#include <Platform/AsyncFiles.h>

#include <cstddef>
#include <cstdint>
#include <memory>

namespace ORL {
namespace Linux {

struct AsyncFile;

/// One read, from its start to its completion. Where it stands in the file is told by mOverlapped.
struct ReadOrder
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

/// One thread starts reads, any may post packets, one gets the completions.
class CompletionPort
{
public:
    virtual ~CompletionPort() = default;

    /// From now on Get answers false, also to a thread that is in it: at once or with the next completion.
    virtual void Close() = 0;

    /// 997 when the read is under way or held back, else the error that kept it from starting.
    virtual SystemError Start(const ReadOrder& inOrder) = 0;

    /// How many of the newest reads were refused after all; outError tells why.
    virtual std::size_t Submit(SystemError& outError) = 0;

    /// False when the system refused the packet.
    virtual bool PostEmptyPacket() = 0;

    /// The next packet. False for a read that failed, and with a null read when the port itself has failed.
    virtual bool Get(AsyncFiles::Platform::Completion& outCompletion) = 0;

    virtual const char* Describe() const = 0;
};

/// The open ports of the process, by their handles. A handle says nothing once its port is closed: a thread that still
/// has it finds no port, and nothing of what the port was. Safe from any thread.
class OpenPorts
{
public:
    /// Throws std::bad_alloc.
    static AsyncFiles::Platform::Handle Add(const std::shared_ptr<CompletionPort>& inPort);

    /// Null for a handle without a port.
    static std::shared_ptr<CompletionPort> Find(AsyncFiles::Platform::Handle inHandle);

    static std::shared_ptr<CompletionPort> Remove(AsyncFiles::Platform::Handle inHandle);
};

/// A file opened for asynchronous reads. It keeps its port alive.
struct AsyncFile
{
    int mDescriptor = -1;
    bool mIsRegular = false;       // its end is known; a block device is asked for what it has
    bool mGoesThroughCache = false;
    std::uint32_t mAlignment = 0;
    std::shared_ptr<CompletionPort> mPort;
    ShareHolder mShares; // a reader beside all other handles of the file
};

/// A port over io_uring. Null when the kernel refuses the ring or lacks an operation; outError then tells why, as an
/// errno. Throws std::bad_alloc.
std::shared_ptr<CompletionPort> MakeRingPort(int& outError);

/// A port over a few threads that call pread, for where the ring is refused for that reason; 0: nobody asked for it.
/// Throws std::bad_alloc.
std::shared_ptr<CompletionPort> MakeThreadPort(int inRefusal);

/// Asks a system again that is short of something for a moment, or was interrupted.
class Retries
{
public:
    /// True when the call that failed with this errno is worth another try; it has waited a little by then.
    bool IsWorthwhile(int inErrno);

private:
    int mLeft = 2000; // a millisecond apart
};

/// Reads on the calling thread: bytes, or an errno negated.
std::int64_t ReadNow(const ReadOrder& inOrder);

/// What a read that has ended says, from what the system returned: bytes, or an errno negated. False for a failure.
bool CompleteRead(const AsyncFile& inFile, AsyncFiles::Platform::Overlapped& inOverlapped, std::int64_t inReturned,
                  AsyncFiles::Platform::Completion& outCompletion);

} // namespace Linux
} // namespace ORL
