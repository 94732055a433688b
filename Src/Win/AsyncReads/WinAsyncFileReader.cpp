#include <Platform/AsyncFiles.h>

#include "../Calls/WinText.h"

#include <cstddef>
#include <memory>
#include <process.h>
#include <windows.h>

namespace ORL {
namespace AsyncFiles {
namespace Platform {

namespace {

// The port returns the OVERLAPPED pointer of the read, so the two types must have the same layout.
static_assert(sizeof(Overlapped) == sizeof(OVERLAPPED));
static_assert(offsetof(Overlapped, mPositionLow) == offsetof(OVERLAPPED, Offset));
static_assert(offsetof(Overlapped, mPositionHigh) == offsetof(OVERLAPPED, OffsetHigh));
static_assert(offsetof(Overlapped, mEvent) == offsetof(OVERLAPPED, hEvent));

// The concurrency is 1, because one thread drains the port.
constexpr DWORD kConcurrency = 1;

OVERLAPPED* AsSystem(Overlapped* inOverlapped)
{
    return reinterpret_cast<OVERLAPPED*>(inOverlapped);
}

struct Start
{
    void (*mBody)(void*);
    void* mArgument;
};

unsigned __stdcall RunThread(void* inStart)
{
    const std::unique_ptr<Start> start(static_cast<Start*>(inStart));
    start->mBody(start->mArgument);
    return 0;
}

} // namespace

SystemError CreatePort_Impl(Handle& outPort)
{
    outPort = ::CreateIoCompletionPort(INVALID_HANDLE_VALUE, nullptr, 0, kConcurrency);
    return outPort != nullptr ? SystemErrors::kNoError : ::GetLastError();
}

void ClosePort_Impl(Handle inPort)
{
    if (inPort != nullptr) {
        ::CloseHandle(inPort);
    }
}

const char* DescribePort_Impl(Handle)
{
    return "a completion port";
}

bool PostEmptyPacket_Impl(Handle inPort)
{
    return ::PostQueuedCompletionStatus(inPort, 0, 0, nullptr) != FALSE;
}

bool GetCompletion_Impl(Handle inPort, Completion& outCompletion)
{
    DWORD bytes = 0;
    ULONG_PTR key = 0;
    OVERLAPPED* overlapped = nullptr;
    const bool result = ::GetQueuedCompletionStatus(inPort, &bytes, &key, &overlapped, INFINITE) != FALSE;
    outCompletion.mOverlapped = reinterpret_cast<Overlapped*>(overlapped);
    outCompletion.mBytesRead = bytes;
    outCompletion.mStartError = SystemErrors::kNoError; // the system rejects reads at their start, not on completion
    return result;
}

SystemError OpenUnbuffered_Impl(const UTF16String& inNormalizedPath, Handle& outFile)
{
    outFile = ::CreateFileW(Win::AsWide(inNormalizedPath.c_str()), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                            nullptr, OPEN_EXISTING, FILE_FLAG_OVERLAPPED | FILE_FLAG_NO_BUFFERING, nullptr);
    return outFile != INVALID_HANDLE_VALUE ? SystemErrors::kNoError : ::GetLastError();
}

void CloseFile_Impl(Handle inFile)
{
    ::CloseHandle(inFile);
}

SystemError AttachFile_Impl(Handle inPort, Handle inFile)
{
    return ::CreateIoCompletionPort(inFile, inPort, 0, kConcurrency) != nullptr ? SystemErrors::kNoError
                                                                                : ::GetLastError();
}

std::uint32_t GetReadAlignment_Impl(Handle)
{
    return 0; // 0: use the alignment of the volume
}

SystemError StartRead_Impl(Handle inFile, void* outBuffer, std::uint32_t inSize, Overlapped* ioOverlapped)
{
    const bool result = ::ReadFile(inFile, outBuffer, inSize, nullptr, AsSystem(ioOverlapped)) != FALSE;
    return result ? SystemErrors::kNoError : ::GetLastError();
}

std::size_t SubmitReads_Impl(SystemError& outError)
{
    outError = SystemErrors::kNoError;
    return 0; // this port does not batch reads
}

SystemError StartThread_Impl(const char*, void (*inBody)(void*), void* inArgument, Handle& outThread)
{
    std::unique_ptr<Start> start(new Start{inBody, inArgument});
    outThread = reinterpret_cast<Handle>(::_beginthreadex(nullptr, 0, &RunThread, start.get(), 0, nullptr));
    if (outThread == nullptr) {
        return SystemErrors::kErrorNotEnoughMemory;
    }
    start.release();
    return SystemErrors::kNoError;
}

void WaitForThread_Impl(Handle inThread)
{
    if (inThread != nullptr) {
        ::WaitForSingleObject(inThread, INFINITE);
    }
}

void CloseThread_Impl(Handle inThread)
{
    if (inThread != nullptr) {
        ::CloseHandle(inThread);
    }
}

} // namespace Platform
} // namespace AsyncFiles
} // namespace ORL
