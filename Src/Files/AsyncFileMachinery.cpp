#include "AsyncFileMachinery.h"

#include <ORLDebug.h>

#include <tvxcore/Trace.h>

#include <cstddef>

namespace ORL {
namespace AsyncFiles {

using namespace Platform;

namespace {

// Keeps its value past the end of the process's static objects: a host that never stops the library must not have
// its exit wait for our threads.
template <class T>
union Immortal
{
    constexpr Immortal() : mValue() {}
    ~Immortal() {}

    T mValue;
};

Immortal<boost::shared_ptr<tvxcore::threads::AsyncThreadedExecutor>> sReadThreadQueueStorage;

Handle sCompletionThread = nullptr;

AsyncReadRequests sRequestPool;

// The callback returns before the request leaves its list, so an empty list means that all callbacks have returned.
void Finish(AsyncReadRequest& ioRequest, std::uint32_t inBytesRead)
{
    if (ioRequest.mCallback != nullptr) {
        ioRequest.mCallback(ioRequest.mReader, ioRequest.mFilePosition, ioRequest.mSize, inBytesRead,
                            ioRequest.mBuffer, ioRequest.mUserData1, ioRequest.mUserData2, ioRequest.mUserData3,
                            ioRequest.mResult);
    }
    ioRequest.mBusyRequests->Remove(&ioRequest);
    sRequestPool.FreeAsyncReadRequest(&ioRequest);
}

// A read that completes with a failure ends the thread, like the packet of TerminateAsyncFileOperations.
void DrainPort(void* inPort)
{
    Completion completion{};
    while (GetCompletion_Impl(inPort, completion) && completion.mOverlapped != nullptr) {
        Finish(*reinterpret_cast<AsyncReadRequest*>(completion.mOverlapped), completion.mBytesRead);
    }
}

void TracePort()
{
    static tvxcore::debug::TraceSite sSite("ORL.AsyncFileReader", 1, true);
    if (sSite.IsEnabled()) {
        tvxcore::debug::TraceLine(sSite) << "Asynchronous reads go through " << DescribePort_Impl(sCompletionPort)
                                         << ".\n";
    }
}

} // namespace

Handle sCompletionPort = nullptr;

boost::shared_ptr<tvxcore::threads::AsyncThreadedExecutor>& sReadThreadQueue = sReadThreadQueueStorage.mValue;

void StartOfRead::operator()() const
{
    constexpr SystemError kStarted = 0;
    const SystemError error = StartRead_Impl(mFile, mRequest->mBuffer, mRequest->mSize, &mRequest->mOverlapped);
    if (error == kStarted || error == SystemErrors::kErrorIoPending) {
        return; // the port delivers it in both cases, and the request may be gone by now
    }
    mRequest->mResult = Win::SystemErrorToORLResult(error);
    Finish(*mRequest, 0);
}

} // namespace AsyncFiles

using namespace AsyncFiles;

AsyncReadRequests& TheAsyncReadRequests()
{
    return sRequestPool;
}

void StartupAsyncFileOperations()
{
    ORL_INPUT_CONTRACT(sCompletionPort == NULL);
    if (sCompletionPort != nullptr) {
        return;
    }
    CreatePort_Impl(sCompletionPort);
    TracePort();
    StartThread_Impl("ORL Async File Completion", &DrainPort, sCompletionPort, sCompletionThread);
    ORL_ASSERT(sReadThreadQueue == NULL);
    try {
        sReadThreadQueue = tvxcore::threads::CreateAsyncThreadedExecutor(
            "WinAsyncFileReader Async Read Thread", 1, 3, boost::function<void()>(), boost::function<void()>());
    } catch (...) {
        TerminateAsyncFileOperations();
        throw;
    }
}

void TerminateAsyncFileOperations()
{
    const bool result = PostEmptyPacket_Impl(sCompletionPort);
    ORL_ASSERT(result);
    if (result) {
        WaitForThread_Impl(sCompletionThread);
    }
    CloseThread_Impl(sCompletionThread);
    ClosePort_Impl(sCompletionPort);
    sCompletionThread = nullptr;
    sCompletionPort = nullptr;
    sReadThreadQueue.reset();
}

} // namespace ORL
