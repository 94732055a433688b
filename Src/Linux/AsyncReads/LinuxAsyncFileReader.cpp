// Implements files and threads for asynchronous reads. LinuxRingPort.cpp and LinuxThreadPort.cpp implement the ports.
#include "LinuxCompletionPort.h"

#include "../Calls/LinuxErrors.h"
#include "../Calls/SystemCalls.h"
#include "../Files/LinuxDirectAlignment.h"
#include "../Files/LinuxPageCache.h"
#include "../Paths/LinuxHostPath.h"

#include <Core/Immortal.h>
#include <Platform/ThreadManager.h>
#include <Platform/Waiting.h>

#include <atomic>
#include <cerrno>
#include <memory>
#include <new>
#include <pthread.h>
#include <signal.h>
#include <string>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>
#include <utility>
#include <valgrind/valgrind.h>

namespace ORL {

namespace Linux {

using namespace AsyncFiles::Platform;

namespace {

bool IsPassing(int inErrno)
{
    return inErrno == EAGAIN || inErrno == EBUSY || inErrno == ENOMEM || inErrno == ENOBUFS;
}

} // namespace

bool Retries::IsWorthwhile(int inErrno)
{
    if (inErrno == EINTR) {
        return true;
    }
    if (!IsPassing(inErrno) || mLeft-- == 0) {
        return false;
    }
    Sync::Platform::SleepMilliseconds_Impl(1);
    return true;
}

std::int64_t ReadNow(const ReadRequest& inRequest)
{
    Retries retries;
    ssize_t returned = -1;
    do {
        returned = System().mPRead(inRequest.mFile->File(), inRequest.mBuffer, inRequest.mSize,
                                   static_cast<off_t>(PositionOf(*inRequest.mOverlapped)));
    } while (returned < 0 && retries.IsWorthwhile(errno));
    return returned >= 0 ? returned : -static_cast<std::int64_t>(errno);
}

bool CompleteRead(const AsyncFile& inFile, Overlapped& inOverlapped, std::int64_t inReturned, Completion& outCompletion)
{
    outCompletion.mOverlapped = &inOverlapped;
    // The kernel detects a bad buffer only when it stores the data; Windows checks the buffer when the read starts.
    if (inReturned == -EFAULT) {
        outCompletion.mStartError = SystemErrors::kErrorNoAccess;
        return true;
    }
    const bool hasSucceeded = inReturned >= 0;
    outCompletion.mBytesRead = hasSucceeded ? static_cast<std::uint32_t>(inReturned) : 0;
    if (hasSucceeded && inFile.mUsesCache) {
        DropPagesOfTransfer(inFile.File(), PositionOf(inOverlapped), outCompletion.mBytesRead);
    }
    return hasSucceeded;
}

} // namespace Linux

namespace AsyncFiles {
namespace Platform {

namespace {

using namespace ORL::Linux;
using namespace SystemErrors;

// The port of the batched reads: a counted reference, because their files may be closed before the reads are
// submitted. Only the thread that starts reads uses this reference.
Immortal<std::shared_ptr<CompletionPort>> sBatchPort;

AsyncFile& FileOf(Handle inFile)
{
    return *static_cast<AsyncFile*>(inFile);
}

// O_NONBLOCK: otherwise opening a pipe would block until it has a writer.
Descriptor OpenHostFile(const std::string& inHostPath, int inFlags)
{
    return OpenByPath(inHostPath.c_str(), O_RDONLY | O_NOCTTY | O_NONBLOCK | inFlags);
}

// If the file system refuses direct reads, the file is read through the cache.
SystemError OpenDescriptor(const std::string& inHostPath, AsyncFile& outFile)
{
    Descriptor file = OpenHostFile(inHostPath, O_DIRECT);
    if (!file && errno == EINVAL) {
        outFile.mUsesCache = true;
        file = OpenHostFile(inHostPath, 0);
    }
    if (!file) {
        return SystemErrorFromErrno(errno, inHostPath);
    }
    outFile.mShares.Own(std::move(file));
    return kNoError;
}

int FlagsOf(const AsyncFile& inFile)
{
    return O_RDONLY | (inFile.mUsesCache ? 0 : O_DIRECT);
}

// Accepts only regular files and block devices, and makes reads of ioFile blocking.
SystemError CheckKind(AsyncFile& ioFile)
{
    struct statx status;
    if (System().mStatx(ioFile.File(), "", AT_EMPTY_PATH, STATX_TYPE | STATX_INO, &status) != 0) {
        return SystemErrorFromErrno(errno);
    }
    ioFile.mIsRegular = S_ISREG(status.stx_mode);
    if (!ioFile.mIsRegular && !S_ISBLK(status.stx_mode)) {
        return kErrorAccessDenied;
    }
    const FileIdentity identity{makedev(status.stx_dev_major, status.stx_dev_minor), status.stx_ino};
    const SystemError error = ioFile.mShares.Enter(identity, kShareRead, kShareRead | kShareWrite);
    if (error != kNoError) {
        return error;
    }
    return System().mSetFlags(ioFile.File(), FlagsOf(ioFile)) == 0 ? kNoError : SystemErrorFromErrno(errno);
}

SystemError UseCache(AsyncFile& ioFile)
{
    ioFile.mUsesCache = System().mSetFlags(ioFile.File(), O_RDONLY) == 0;
    return ioFile.mUsesCache ? kNoError : SystemErrorFromErrno(errno);
}

// Unaligned reads fail for every file, as on Windows, even if this file system accepts them.
SystemError ChooseAlignment(AsyncFile& ioFile)
{
    ioFile.mAlignment = kSmallestSector;
    if (ioFile.mUsesCache) {
        return kNoError;
    }
    const std::uint32_t alignment = FindDirectAlignment(ioFile.File(), TestRead::kAllowed);
    if (alignment == 0) {
        return UseCache(ioFile); // the open succeeded, but this file does not support direct reads
    }
    ioFile.mAlignment = alignment;
    return kNoError;
}

bool IsAligned(const AsyncFile& inFile, const void* inBuffer, std::uint32_t inSize, std::uint64_t inPosition)
{
    const std::uint64_t all = reinterpret_cast<std::uintptr_t>(inBuffer) | inSize | inPosition;
    return all % inFile.mAlignment == 0;
}

// On Windows a read at or past the end fails; the Linux kernel reports success with 0 bytes. Seeking is the cheapest
// way to query the size. The seek moves only the descriptor's own position, which is not used.
SystemError CheckEnd(const AsyncFile& inFile, std::uint64_t inPosition)
{
    if (!inFile.mIsRegular) {
        return kNoError;
    }
    const off_t end = System().mSeek(inFile.File(), 0, SEEK_END);
    if (end < 0) {
        return SystemErrorFromErrno(errno);
    }
    return inPosition >= static_cast<std::uint64_t>(end) ? kErrorHandleEof : kNoError;
}

// Shared by the thread itself and the owner of its handle; the last of the two deletes it.
struct Thread
{
    pthread_t mThread;
    const char* mName;
    void (*mBody)(void*);
    void* mArgument;
    bool mIsJoined = false;
    std::atomic<int> mOwners{2};
};

void ReleaseOwner(Thread* inThread)
{
    if (inThread->mOwners.fetch_sub(1) == 1) {
        delete inThread;
    }
}

void* RunThread(void* inThread)
{
    Thread* const thread = static_cast<Thread*>(inThread);
    const char* const name = thread->mName;
    void (*const body)(void*) = thread->mBody;
    void* const argument = thread->mArgument;
    ReleaseOwner(thread);
    ThreadManager::Platform::NameThread_Impl(name);
    body(argument);
    return nullptr;
}

// Valgrind runs one thread at a time and cannot detect that a thread sleeps in a ring, so that thread would block all
// others.
bool MustAvoidRing()
{
    return RUNNING_ON_VALGRIND != 0;
}

} // namespace

SystemError CreatePort_Impl(Handle& outPort)
{
    outPort = nullptr;
    try {
        int refusal = 0;
        std::shared_ptr<CompletionPort> port = MustAvoidRing() ? nullptr : MakeRingPort(refusal);
        if (port == nullptr) {
            port = MakeThreadPort(refusal);
        }
        outPort = OpenPorts::Add(port);
        return kNoError;
    } catch (const std::bad_alloc&) {
        return kErrorNotEnoughMemory;
    }
}

void ClosePort_Impl(Handle inPort)
{
    const std::shared_ptr<CompletionPort> port = OpenPorts::Remove(inPort);
    if (port != nullptr) {
        port->Close();
    }
}

const char* DescribePort_Impl(Handle inPort)
{
    const std::shared_ptr<CompletionPort> port = OpenPorts::Find(inPort);
    return port != nullptr ? port->Describe() : "nothing"; // Describe returns a string literal
}

bool PostEmptyPacket_Impl(Handle inPort)
{
    const std::shared_ptr<CompletionPort> port = OpenPorts::Find(inPort);
    return port != nullptr && port->PostEmptyPacket();
}

bool GetCompletion_Impl(Handle inPort, Completion& outCompletion)
{
    outCompletion = Completion{};
    // This reference keeps a port alive that another thread closes during the wait.
    const std::shared_ptr<CompletionPort> port = OpenPorts::Find(inPort);
    return port != nullptr && port->Get(outCompletion);
}

SystemError OpenUnbuffered_Impl(const UTF16String& inNormalizedPath, Handle& outFile)
{
    outFile = InvalidHandle();
    HostPath path;
    SystemError error = ResolveToUsablePath(inNormalizedPath, path);
    if (error != kNoError) {
        return error;
    }
    std::unique_ptr<AsyncFile> file(new AsyncFile);
    error = OpenDescriptor(path.mPath, *file);
    if (error != kNoError) {
        return error;
    }
    error = CheckKind(*file);
    if (error == kNoError) {
        error = ChooseAlignment(*file);
    }
    if (error != kNoError) {
        return error;
    }
    outFile = file.release();
    return kNoError;
}

void CloseFile_Impl(Handle inFile)
{
    FileOf(inFile).mShares.Release(); // must precede the release of the port
    delete &FileOf(inFile);
}

SystemError AttachFile_Impl(Handle inPort, Handle inFile)
{
    FileOf(inFile).mPort = OpenPorts::Find(inPort);
    return FileOf(inFile).mPort != nullptr ? kNoError : kErrorInvalidHandle;
}

std::uint32_t GetReadAlignment_Impl(Handle inFile)
{
    return FileOf(inFile).mAlignment;
}

SystemError StartRead_Impl(Handle inFile, void* outBuffer, std::uint32_t inSize, Overlapped* ioOverlapped)
{
    if (inFile == nullptr || inFile == InvalidHandle() || FileOf(inFile).mPort == nullptr) {
        return kErrorInvalidHandle;
    }
    if (outBuffer == nullptr && inSize != 0) {
        return kErrorNoAccess;
    }
    AsyncFile& file = FileOf(inFile);
    const std::uint64_t position = PositionOf(*ioOverlapped);
    if (!IsAligned(file, outBuffer, inSize, position)) {
        return kErrorInvalidParameter;
    }
    const SystemError error = CheckEnd(file, position);
    if (error != kNoError) {
        return error;
    }
    if (sBatchPort.mValue == nullptr) {
        sBatchPort.mValue = file.mPort;
    }
    return file.mPort->Start(ReadRequest{&file, outBuffer, inSize, ioOverlapped});
}

std::size_t SubmitReads_Impl(SystemError& outError)
{
    outError = kNoError;
    const std::shared_ptr<CompletionPort> port = std::move(sBatchPort.mValue);
    return port != nullptr ? port->Submit(outError) : 0;
}

// Blocks all signals on this thread, because signal handlers of the host expect to run on the host's threads.
SystemError StartThread_Impl(const char* inName, void (*inBody)(void*), void* inArgument, Handle& outThread)
{
    outThread = nullptr;
    std::unique_ptr<Thread> thread(new (std::nothrow) Thread{pthread_t(), inName, inBody, inArgument});
    if (thread == nullptr) {
        return kErrorNotEnoughMemory;
    }
    sigset_t all;
    sigset_t earlier;
    ::sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, &earlier);
    const int refusal = System().mCreateThread(&thread->mThread, nullptr, &RunThread, thread.get());
    ::pthread_sigmask(SIG_SETMASK, &earlier, nullptr);
    if (refusal != 0) {
        return SystemErrorFromErrno(refusal);
    }
    outThread = thread.release();
    return kNoError;
}

void WaitForThread_Impl(Handle inThread)
{
    Thread* const thread = static_cast<Thread*>(inThread);
    if (thread != nullptr && !thread->mIsJoined) {
        ::pthread_join(thread->mThread, nullptr);
        thread->mIsJoined = true;
    }
}

void CloseThread_Impl(Handle inThread)
{
    Thread* const thread = static_cast<Thread*>(inThread);
    if (thread == nullptr) {
        return;
    }
    if (!thread->mIsJoined) {
        ::pthread_detach(thread->mThread);
    }
    ReleaseOwner(thread);
}

} // namespace Platform
} // namespace AsyncFiles
} // namespace ORL
