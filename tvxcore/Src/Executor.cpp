#include <tvxcore/Executor.h>

#include <CorePlatform/Thread.h>

#include <algorithm>
#include <atomic>
#include <boost/make_shared.hpp>
#include <boost/thread/exceptions.hpp>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <deque>
#include <mutex>
#include <vector>

namespace tvxcore {
namespace threads {

AsyncExecutor::~AsyncExecutor() = default;
AsyncThreadedExecutor::~AsyncThreadedExecutor() = default;

namespace {

using Function = boost::function<void()>;

// What the threads share with the executor's face. A thread keeps it alive past the face.
struct Shared
{
    std::mutex mMutex;
    std::condition_variable mChanged;
    std::deque<Function> mQueue;
    std::string mName;
    Function mThreadStart;
    Function mThreadEnd;
    ThreadPriority mPriority = 3;
    bool mIsPaused = false;
    bool mIsClosed = false;
};

thread_local const Shared* tCurrent = nullptr;

void RunGuarded(const Function& inFunction)
{
    try {
        if (inFunction) {
            inFunction();
        }
    } catch (...) {
        std::fputs("A function on an executor's thread threw an exception.\n", stderr);
    }
}

bool TakeNext(Shared& ioShared, Function& outFunction)
{
    std::unique_lock<std::mutex> lock(ioShared.mMutex);
    ioShared.mChanged.wait(lock, [&ioShared] {
        return !ioShared.mIsPaused && (ioShared.mIsClosed || !ioShared.mQueue.empty());
    });
    if (ioShared.mQueue.empty()) {
        return false;
    }
    outFunction.swap(ioShared.mQueue.front());
    ioShared.mQueue.pop_front();
    return true;
}

void RunThread(void* inShared)
{
    const std::unique_ptr<std::shared_ptr<Shared>> holder(static_cast<std::shared_ptr<Shared>*>(inShared));
    const std::shared_ptr<Shared> shared = *holder;
    tCurrent = shared.get();
    Platform::NameCurrentThread_Impl(shared->mName.c_str());
    Platform::SetCurrentThreadPriority_Impl(std::clamp(shared->mPriority, 0, 5));
    RunGuarded(shared->mThreadStart);
    Function function;
    while (TakeNext(*shared, function)) {
        RunGuarded(function);
        function.clear();
    }
    RunGuarded(shared->mThreadEnd);
    tCurrent = nullptr;
}

class ThreadedExecutor : public AsyncThreadedExecutor
{
public:
    explicit ThreadedExecutor(const std::shared_ptr<Shared>& inShared) : mShared(inShared) {}

    ~ThreadedExecutor() override
    {
        RequestTermination();
        if (!CurrentThreadIsExecutorThread()) {
            WaitForTermination();
        } else {
            std::for_each(mThreads.begin(), mThreads.end(), &Platform::DetachThread_Impl);
        }
    }

    void StartThreads(unsigned int inCount)
    {
        mThreads.reserve(inCount);
        while (mThreads.size() < inCount) {
            auto holder = std::make_unique<std::shared_ptr<Shared>>(mShared);
            Platform::ThreadHandle thread{};
            if (!Platform::StartThread_Impl(&RunThread, holder.get(), thread)) {
                throw boost::thread_resource_error();
            }
            static_cast<void>(holder.release());
            mThreads.push_back(thread);
        }
        mCount = inCount;
    }

    bool QueueFunction(const Function& inFunction, int) override
    {
        const std::lock_guard<std::mutex> lock(mShared->mMutex);
        if (mShared->mIsClosed) {
            return false;
        }
        mShared->mQueue.push_back(inFunction);
        mShared->mChanged.notify_all();
        return true;
    }

    unsigned int GetThreadCount() override { return mCount; }

    void RequestTermination() override
    {
        const std::lock_guard<std::mutex> lock(mShared->mMutex);
        mShared->mIsClosed = true;
        mShared->mIsPaused = false;
        mShared->mChanged.notify_all();
    }

    bool IsTerminated() override { return mIsTerminated; }

    bool CurrentThreadIsExecutorThread() override { return tCurrent == mShared.get(); }

    void WaitForTermination() override
    {
        if (CurrentThreadIsExecutorThread()) {
            mIsTerminated = true;
            return;
        }
        const std::lock_guard<std::mutex> lock(mJoinMutex);
        std::for_each(mThreads.begin(), mThreads.end(), &Platform::JoinThread_Impl);
        mThreads.clear();
        mIsTerminated = true;
    }

    void Pause() override { SetPaused(true); }
    void Resume() override { SetPaused(false); }

    void BlockWhilePaused() override
    {
        std::unique_lock<std::mutex> lock(mShared->mMutex);
        mShared->mChanged.wait(lock, [this] { return !mShared->mIsPaused; });
    }

private:
    void SetPaused(bool inIsPaused)
    {
        const std::lock_guard<std::mutex> lock(mShared->mMutex);
        mShared->mIsPaused = inIsPaused && !mShared->mIsClosed;
        mShared->mChanged.notify_all();
    }

    const std::shared_ptr<Shared> mShared;
    std::mutex mJoinMutex;
    std::vector<Platform::ThreadHandle> mThreads; // guarded by mJoinMutex
    unsigned int mCount = 0;
    std::atomic<bool> mIsTerminated{false};
};

} // namespace

boost::shared_ptr<AsyncThreadedExecutor> CreateAsyncThreadedExecutor(const std::string& inName, int inThreadCount,
                                                                     ThreadPriority inPriority,
                                                                     const boost::function<void()>& inThreadStart,
                                                                     const boost::function<void()>& inThreadEnd)
{
    const auto shared = std::make_shared<Shared>();
    shared->mName = inName;
    shared->mThreadStart = inThreadStart;
    shared->mThreadEnd = inThreadEnd;
    shared->mPriority = inPriority;
    const auto executor = boost::make_shared<ThreadedExecutor>(shared);
    executor->StartThreads(inThreadCount > 0 ? static_cast<unsigned int>(inThreadCount)
                                             : Platform::UsableProcessorCount_Impl());
    return executor;
}

// One thread that waits out the delays and hands the function on.
struct RepeatDelayFunction::State
{
    std::mutex mMutex;
    std::condition_variable mChanged;
    boost::shared_ptr<AsyncExecutor> mExecutor;
    boost::function<void()> mFunction;
    std::chrono::milliseconds mDelay{};
    Platform::ThreadHandle mThread{};
    unsigned long mRunner = 0;
    bool mIsQueued = false;
    bool mIsEnded = false;

    static void Run(const std::shared_ptr<State>& inState)
    {
        std::unique_lock<std::mutex> lock(inState->mMutex);
        inState->mIsQueued = false;
        if (!inState->mIsEnded) {
            inState->mRunner = GetCurrentThreadID();
            lock.unlock();
            RunGuarded(inState->mFunction);
            lock.lock();
            inState->mRunner = 0;
        }
        inState->mChanged.notify_all();
    }

    static void Repeat(void* inState)
    {
        const std::unique_ptr<std::shared_ptr<State>> holder(static_cast<std::shared_ptr<State>*>(inState));
        State& state = **holder;
        std::unique_lock<std::mutex> lock(state.mMutex);
        while (!state.mIsEnded) {
            if (state.mChanged.wait_for(lock, state.mDelay) == std::cv_status::timeout && !state.mIsEnded
                && !state.mIsQueued && state.mRunner == 0) {
                const std::shared_ptr<State> self = *holder;
                state.mIsQueued = state.mExecutor->QueueFunction([self] { Run(self); }, 0);
            }
        }
    }
};

RepeatDelayFunction::RepeatDelayFunction(const boost::shared_ptr<AsyncExecutor>& inExecutor,
                                         const boost::function<void()>& inFunction, unsigned int inDelay)
    : mState(std::make_shared<State>())
{
    mState->mExecutor = inExecutor;
    mState->mFunction = inFunction;
    mState->mDelay = std::chrono::milliseconds(inDelay);
    auto holder = std::make_unique<std::shared_ptr<State>>(mState);
    if (!Platform::StartThread_Impl(&State::Repeat, holder.get(), mState->mThread)) {
        throw boost::thread_resource_error();
    }
    static_cast<void>(holder.release());
}

RepeatDelayFunction::~RepeatDelayFunction()
{
    std::unique_lock<std::mutex> lock(mState->mMutex);
    mState->mIsEnded = true;
    mState->mChanged.notify_all();
    if (mState->mRunner != GetCurrentThreadID()) {
        mState->mChanged.wait(lock, [this] { return mState->mRunner == 0; });
    }
    lock.unlock();
    Platform::JoinThread_Impl(mState->mThread);
}

} // namespace threads
} // namespace tvxcore
