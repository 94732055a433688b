#include "AsyncFileMachinery.h"

#include <Core/Immortal.h>
#include <ORLDebug.h>

#include <tvxcore/Trace.h>

#include <atomic>
#include <boost/thread/exceptions.hpp>
#include <cstddef>

namespace ORL {
namespace AsyncFiles {

using namespace Platform;

namespace {

// Never destroyed: if the host never stops the library, process exit would wait for the executor's thread.
Immortal<boost::shared_ptr<tvxcore::threads::AsyncThreadedExecutor>> sReadThreadQueueStorage;

Handle sCompletionThread = nullptr;

AsyncReadRequests sRequestPool;

// The callback returns before the request is removed from its list, so an empty list means that all callbacks have
// returned.
void Finish(AsyncReadRequest& ioRequest, std::uint32_t inBytesRead)
{
    if (ioRequest.mCallback != nullptr) {
        ioRequest.mCallback(ioRequest.mReader, ioRequest.mFilePosition, ioRequest.mSize, inBytesRead, ioRequest.mBuffer,
                            ioRequest.mUserData1, ioRequest.mUserData2, ioRequest.mUserData3, ioRequest.mResult);
    }
    ioRequest.mBusyRequests->Remove(&ioRequest);
    sRequestPool.FreeAsyncReadRequest(&ioRequest);
}

void FailToStart(AsyncReadRequest& ioRequest, SystemError inError)
{
    ioRequest.mResult = Win::SystemErrorToORLResult(inError);
    Finish(ioRequest, 0);
}

// Collects reads started in quick succession, to submit them together. Only the executor's thread uses this list.
class ReadBatch
{
public:
    /// Returns true if the list is full.
    bool Add(AsyncReadRequest& ioRequest)
    {
        mRequests[mCount++] = &ioRequest;
        return mCount == kMaxBatchedReads;
    }

    void Submit()
    {
        if (mCount == 0) {
            return;
        }
        SystemError error = SystemErrors::kNoError;
        const std::size_t count = mCount;
        const std::size_t refused = SubmitReads_Impl(error);
        mCount = 0;
        for (std::size_t i = count - refused; i < count; ++i) {
            FailToStart(*mRequests[i], error);
        }
    }

private:
    AsyncReadRequest* mRequests[kMaxBatchedReads] = {};
    std::size_t mCount = 0;
};

ReadBatch sReadBatch;

// A lower bound on the number of starts queued in the executor: incremented only after the executor has accepted a
// start. While the count is above zero, another start will run and submit the batched reads.
std::atomic<int> sQueuedStarts{0};

// The thread exits when a read completes with a failure or when TerminateAsyncFileOperations posts an empty packet.
void DrainPort(void* inPort)
{
    Completion completion{};
    while (GetCompletion_Impl(inPort, completion) && completion.mOverlapped != nullptr) {
        AsyncReadRequest& request = *reinterpret_cast<AsyncReadRequest*>(completion.mOverlapped);
        if (completion.mStartError != SystemErrors::kNoError) {
            FailToStart(request, completion.mStartError);
        } else {
            Finish(request, completion.mBytesRead);
        }
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

// Throws if the thread cannot be started, because without the thread no read would ever complete.
void StartCompletionThread()
{
    const SystemError error =
        StartThread_Impl("ORL Async File Completion", &DrainPort, sCompletionPort, sCompletionThread);
    if (error != SystemErrors::kNoError) {
        throw boost::thread_resource_error();
    }
}

} // namespace

Handle sCompletionPort = nullptr;

boost::shared_ptr<tvxcore::threads::AsyncThreadedExecutor>& sReadThreadQueue = sReadThreadQueueStorage.mValue;

void CountQueuedStart()
{
    sQueuedStarts.fetch_add(1, std::memory_order_relaxed);
}

void ReadStart::operator()() const
{
    const SystemError error = StartRead_Impl(mFile, mRequest->mBuffer, mRequest->mSize, &mRequest->mOverlapped);
    const bool isStarted = error == SystemErrors::kNoError || error == SystemErrors::kErrorIoPending;
    // A started read may complete at any time and free its request: dereference mRequest only if the start failed.
    const bool isFull = isStarted && sReadBatch.Add(*mRequest);
    const bool moreFollow = sQueuedStarts.fetch_sub(1, std::memory_order_relaxed) > 1;
    if (!isStarted || isFull || !moreFollow) {
        sReadBatch.Submit();
    }
    if (!isStarted) {
        FailToStart(*mRequest, error);
    }
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
    try {
        StartCompletionThread();
        ORL_ASSERT(sReadThreadQueue == NULL);
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
