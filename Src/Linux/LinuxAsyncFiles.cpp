// Files and threads of asynchronous reads. The ports stand in LinuxRingPort.cpp and LinuxThreadPort.cpp.
#include "LinuxCompletionPort.h"

#include "LinuxErrors.h"
#include "LinuxHostPath.h"
#include "SystemCalls.h"

#include <Platform/ThreadManager.h>

#include <algorithm>
#include <cerrno>
#include <new>
#include <memory>
#include <pthread.h>
#include <signal.h>
#include <string>
#include <utility>

namespace ORL {

namespace Linux {

using namespace AsyncFiles::Platform;

void DropPagesBehind(const AsyncFile& inFile, std::uint64_t inPosition, std::uint32_t inBytesRead)
{
    if (inFile.mGoesThroughCache && inBytesRead != 0) {
        System().mFAdvise(inFile.mDescriptor, static_cast<off_t>(inPosition), static_cast<off_t>(inBytesRead),
                          POSIX_FADV_DONTNEED);
    }
}

bool CompleteRead(const ReadOrder& inOrder, std::int64_t inReturned, Completion& outCompletion)
{
    const bool hasSucceeded = inReturned >= 0;
    outCompletion.mOverlapped = inOrder.mOverlapped;
    outCompletion.mBytesRead = hasSucceeded ? static_cast<std::uint32_t>(inReturned) : 0;
    if (hasSucceeded) {
        DropPagesBehind(*inOrder.mFile, inOrder.mPosition, outCompletion.mBytesRead);
    }
    return hasSucceeded;
}

} // namespace Linux

namespace AsyncFiles {
namespace Platform {

namespace {

using namespace ORL::Linux;
using namespace SystemErrors;

using PortHandle = std::shared_ptr<CompletionPort>;

AsyncFile& FileOf(Handle inFile)
{
    return *static_cast<AsyncFile*>(inFile);
}

CompletionPort& PortOf(Handle inPort)
{
    return **static_cast<PortHandle*>(inPort);
}

// Only what can be read at any place is opened: to open a pipe would wait for its writer.
SystemError CheckKind(const std::string& inHostPath, AsyncFile& outFile)
{
    struct statx status;
    if (System().mStatx(AT_FDCWD, inHostPath.c_str(), 0, STATX_TYPE, &status) != 0) {
        return SystemErrorFromErrno(errno, inHostPath);
    }
    outFile.mIsRegular = S_ISREG(status.stx_mode);
    return outFile.mIsRegular || S_ISBLK(status.stx_mode) ? kNoError : kErrorAccessDenied;
}

int OpenHostFile(const std::string& inHostPath, int inFlags)
{
    int file = -1;
    do {
        file = System().mOpen(inHostPath.c_str(), O_RDONLY | O_CLOEXEC | inFlags, 0);
    } while (file < 0 && errno == EINTR);
    return file;
}

// A file system that refuses direct reads is read through the cache.
SystemError OpenDescriptor(const std::string& inHostPath, AsyncFile& outFile)
{
    outFile.mDescriptor = OpenHostFile(inHostPath, O_DIRECT);
    if (outFile.mDescriptor < 0 && errno == EINVAL) {
        outFile.mGoesThroughCache = true;
        outFile.mDescriptor = OpenHostFile(inHostPath, 0);
    }
    return outFile.mDescriptor < 0 ? SystemErrorFromErrno(errno, inHostPath) : kNoError;
}

// Some file systems open for direct reads and tell no alignment, since they ask for none.
void LearnAlignment(AsyncFile& ioFile)
{
    struct statx status;
    if (!ioFile.mGoesThroughCache
        && System().mStatx(ioFile.mDescriptor, "", AT_EMPTY_PATH, STATX_DIOALIGN, &status) == 0
        && (status.stx_mask & STATX_DIOALIGN) != 0) {
        ioFile.mAlignment = std::max(status.stx_dio_offset_align, status.stx_dio_mem_align);
    }
}

bool IsAligned(const AsyncFile& inFile, const void* inBuffer, std::uint32_t inSize, std::uint64_t inPosition)
{
    return inFile.mAlignment == 0
           || (reinterpret_cast<std::uintptr_t>(inBuffer) % inFile.mAlignment == 0 && inSize % inFile.mAlignment == 0
               && inPosition % inFile.mAlignment == 0);
}

// At home such a read fails; here the system would call it a success of 0 bytes.
SystemError CheckEnd(const AsyncFile& inFile, std::uint64_t inPosition)
{
    struct statx status;
    if (!inFile.mIsRegular) {
        return kNoError;
    }
    if (System().mStatx(inFile.mDescriptor, "", AT_EMPTY_PATH, STATX_SIZE, &status) != 0) {
        return SystemErrorFromErrno(errno);
    }
    return inPosition >= status.stx_size ? kErrorHandleEof : kNoError;
}

struct Thread
{
    pthread_t mThread;
    const char* mName;
    void (*mBody)(void*);
    void* mArgument;
    bool mIsJoined = false;
};

void* RunThread(void* inThread)
{
    const Thread& thread = *static_cast<Thread*>(inThread);
    void (*const body)(void*) = thread.mBody;
    void* const argument = thread.mArgument;
    ThreadManager::Platform::NameThread_Impl(thread.mName);
    body(argument);
    return nullptr;
}

} // namespace

SystemError CreatePort_Impl(Handle& outPort)
{
    outPort = nullptr;
    try {
        int refusal = 0;
        PortHandle port = MakeRingPort(refusal);
        if (port == nullptr) {
            port = MakeThreadPort(refusal);
        }
        outPort = new PortHandle(std::move(port));
        return kNoError;
    } catch (const std::bad_alloc&) {
        return kErrorNotEnoughMemory;
    }
}

void ClosePort_Impl(Handle inPort)
{
    delete static_cast<PortHandle*>(inPort);
}

const char* DescribePort_Impl(Handle inPort)
{
    return inPort != nullptr ? PortOf(inPort).Describe() : "nothing";
}

bool PostEmptyPacket_Impl(Handle inPort)
{
    return inPort != nullptr && PortOf(inPort).PostEmptyPacket();
}

bool GetCompletion_Impl(Handle inPort, Completion& outCompletion)
{
    outCompletion = Completion{};
    return inPort != nullptr && PortOf(inPort).Get(outCompletion);
}

SystemError OpenUnbuffered_Impl(const UTF16String& inNormalizedPath, Handle& outFile)
{
    outFile = InvalidHandle();
    HostPath path;
    std::unique_ptr<AsyncFile> file(new AsyncFile);
    SystemError error = ResolveHostPath(inNormalizedPath, path);
    error = error == kNoError ? CheckKind(path.mPath, *file) : error;
    error = error == kNoError ? OpenDescriptor(path.mPath, *file) : error;
    if (error != kNoError) {
        return error;
    }
    LearnAlignment(*file);
    outFile = file.release();
    return kNoError;
}

void CloseFile_Impl(Handle inFile)
{
    System().mClose(FileOf(inFile).mDescriptor);
    delete static_cast<AsyncFile*>(inFile);
}

SystemError AttachFile_Impl(Handle inPort, Handle inFile)
{
    FileOf(inFile).mPort = *static_cast<PortHandle*>(inPort);
    return kNoError;
}

std::uint32_t GetReadAlignment_Impl(Handle inFile)
{
    return FileOf(inFile).mAlignment;
}

SystemError StartRead_Impl(Handle inFile, void* outBuffer, std::uint32_t inSize, Overlapped* ioOverlapped)
{
    AsyncFile& file = FileOf(inFile);
    const std::uint64_t position =
        std::uint64_t{ioOverlapped->mPositionHigh} << 32 | std::uint64_t{ioOverlapped->mPositionLow};
    if (!IsAligned(file, outBuffer, inSize, position)) {
        return kErrorInvalidParameter;
    }
    const SystemError error = CheckEnd(file, position);
    return error != kNoError ? error
                             : file.mPort->Start(ReadOrder{&file, outBuffer, inSize, position, ioOverlapped});
}

// The thread takes none of the process's signals: their handlers belong to the host's threads.
SystemError StartThread_Impl(const char* inName, void (*inBody)(void*), void* inArgument, Handle& outThread)
{
    outThread = nullptr;
    std::unique_ptr<Thread> thread(new Thread{pthread_t(), inName, inBody, inArgument});
    sigset_t all;
    sigset_t earlier;
    ::sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, &earlier);
    const int refusal = ::pthread_create(&thread->mThread, nullptr, &RunThread, thread.get());
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
    if (thread->mIsJoined) {
        delete thread;
    } else {
        ::pthread_detach(thread->mThread); // it may still be reading its record, which stays with it
    }
}

} // namespace Platform
} // namespace AsyncFiles
} // namespace ORL
