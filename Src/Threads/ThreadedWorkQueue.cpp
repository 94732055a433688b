#include <ORLThreadedWorkQueue.h>

#include <ORLCriticalSection.h>
#include <ORLDebug.h>
#include <ORLImpl.h>
#include <tvxcore/Executor.h>

#include <atomic>
#include <memory>
#include <new>
#include <string>
#include <utility>

namespace ORL {

namespace {

using tvxcore::threads::AsyncThreadedExecutor;
using tvxcore::threads::RepeatDelayFunction;
using Request = ThreadedWorkQueue::Request;

// An owning pointer. Callers must hold a lock, except to compare it with null.
class IdleFunction
{
public:
    IdleFunction() = default;
    ~IdleFunction() { Reset(nullptr); }
    IdleFunction(const IdleFunction&) = delete;
    IdleFunction& operator=(const IdleFunction&) = delete;

    bool IsNull() const { return mPointer.load(std::memory_order_relaxed) == nullptr; }

    void Reset(RepeatDelayFunction* inNew) { delete mPointer.exchange(inNew, std::memory_order_relaxed); }

private:
    std::atomic<RepeatDelayFunction*> mPointer{nullptr};
};

tvxcore::threads::ThreadPriority ConvertPriority(ThreadPriorities::Type inPriority)
{
    const bool isKnown = inPriority >= ThreadPriorities::kLowest && inPriority <= ThreadPriorities::kHighest;
    return isKnown ? inPriority : ThreadPriorities::kNormal;
}

int ConvertThreadAllocationPolicy(int inThreadAllocationPolicy)
{
    constexpr int kExecutorChooses = -1;
    if (inThreadAllocationPolicy == kExecutorChooses) {
        return kExecutorChooses;
    }
    if (inThreadAllocationPolicy == 0) {
        return 1;
    }
    ORL_ASSERT_IN(inThreadAllocationPolicy > 0, "ORL::`anonymous-namespace'::ConvertThreadAllocationPolicy");
    return inThreadAllocationPolicy > 0 ? inThreadAllocationPolicy : 1;
}

// The executor runs each function that it accepts exactly once. The request's reference count therefore
// travels with this object and is released after Process, and boost::function copies only a plain pointer. A counted
// reference instead would cost each queued request eight more increments and decrements.
class RunOnce
{
public:
    explicit RunOnce(IThreadedQueueRequest& inRequest) : mRequest(&inRequest) {}

    void operator()() const
    {
        struct ReleaseOnExit
        {
            IThreadedQueueRequest* mRequest;
            ~ReleaseOnExit() { mRequest->Release(); }
        } const payBack{mRequest};
        mRequest->Process();
    }

private:
    IThreadedQueueRequest* mRequest;
};

class RunRepeatedly
{
public:
    explicit RunRepeatedly(const Request& inRequest) : mRequest(inRequest) {}

    void operator()() const { mRequest->Process(); }

private:
    Request mRequest;
};

// Detaches the reference without releasing its count, which now belongs to another owner.
void DetachCount(Request& ioRequest)
{
    alignas(Request) unsigned char neverDestroyed[sizeof(Request)];
    new (neverDestroyed) Request(std::move(ioRequest));
}

} // namespace

struct ORL_LOCAL ThreadedWorkQueue::PrivateImpl : Impl
{
    boost::shared_ptr<AsyncThreadedExecutor> mExecutor;
    IdleFunction mIdleFunction;
    CriticalSection mLock; // guards mIdleFunction
};

ThreadedWorkQueue::ThreadedWorkQueue() : mImpl(new PrivateImpl)
{
}

ThreadedWorkQueue::~ThreadedWorkQueue()
{
    if (mImpl != nullptr && mImpl->mExecutor) {
        ORL_ASSERT_MESSAGE_IN(mImpl->mExecutor->IsTerminated(), "Stop() was not called on a ThreadedWorkQueue.\r\n",
                              "ORL::ThreadedWorkQueue::~ThreadedWorkQueue");
    }
    delete mImpl;
}

bool ThreadedWorkQueue::Initialize(ThreadPriorities::Type inPriority, int inThreadAllocationPolicy,
                                   ConstString inThreadName, ConstString inModuleName)
{
    ORL_INPUT_CONTRACT(!inThreadName.empty());
    ORL_INPUT_CONTRACT(!inModuleName.empty());
    if (mImpl == nullptr) {
        return false;
    }
    const std::string name = MakeStdString(inModuleName) + ": " + MakeStdString(inThreadName);
    const tvxcore::threads::ThreadPriority priority = ConvertPriority(inPriority);
    const int threadCount = ConvertThreadAllocationPolicy(inThreadAllocationPolicy);
    mImpl->mExecutor = tvxcore::threads::CreateAsyncThreadedExecutor(
        name, threadCount, priority, boost::function<void()>(), boost::function<void()>());
    return true;
}

bool ThreadedWorkQueue::QueueRequest(Request inRequest)
{
    if (mImpl == nullptr || !mImpl->mExecutor) {
        return false;
    }
    if (!inRequest) {
        // The thread that runs the request detects the null reference and reports it.
        return mImpl->mExecutor->QueueFunction(RunRepeatedly(inRequest), 0);
    }
    const bool isQueued = mImpl->mExecutor->QueueFunction(RunOnce(*inRequest.GetPtr()), 0);
    if (isQueued) {
        DetachCount(inRequest);
    }
    return isQueued;
}

bool ThreadedWorkQueue::SetIdleProcess(Request inRequest, int inInterval)
{
    if (mImpl == nullptr || !inRequest || !mImpl->mExecutor || inInterval < 1) {
        return false;
    }
    const CriticalSectionLock lock(mImpl->mLock);
    mImpl->mIdleFunction.Reset(
        new RepeatDelayFunction(mImpl->mExecutor, RunRepeatedly(inRequest), static_cast<unsigned int>(inInterval)));
    return true;
}

void ThreadedWorkQueue::ClearIdleProcess()
{
    if (mImpl == nullptr || mImpl->mIdleFunction.IsNull()) {
        return;
    }
    const CriticalSectionLock lock(mImpl->mLock);
    mImpl->mIdleFunction.Reset(nullptr);
}

void ThreadedWorkQueue::Pause()
{
    if (mImpl != nullptr && mImpl->mExecutor) {
        mImpl->mExecutor->Pause();
    }
}

void ThreadedWorkQueue::Resume()
{
    if (mImpl != nullptr && mImpl->mExecutor) {
        mImpl->mExecutor->Resume();
    }
}

void ThreadedWorkQueue::BlockWhilePaused()
{
    if (mImpl != nullptr && mImpl->mExecutor) {
        mImpl->mExecutor->BlockWhilePaused();
    }
}

bool ThreadedWorkQueue::CurrentThreadIsQueueThread()
{
    return mImpl != nullptr && mImpl->mExecutor && mImpl->mExecutor->CurrentThreadIsExecutorThread();
}

unsigned int ThreadedWorkQueue::GetNumberOfThreads()
{
    return mImpl != nullptr && mImpl->mExecutor ? mImpl->mExecutor->GetThreadCount() : 0;
}

void ThreadedWorkQueue::Stop()
{
    if (mImpl == nullptr || !mImpl->mExecutor) {
        return;
    }
    ORL_ASSERT_MESSAGE_IN(!mImpl->mExecutor->IsTerminated(),
                          "Somebody called stop on this Queue more than once (or without calling Initialize), "
                          "which is bad.\r\n",
                          "ORL::ThreadedWorkQueue::Stop");
    mImpl->mExecutor->RequestTermination();
    mImpl->mExecutor->WaitForTermination();
}

} // namespace ORL
