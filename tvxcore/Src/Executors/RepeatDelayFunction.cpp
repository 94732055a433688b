#include <tvxcore/Executor.h>

#include <CorePlatform/Thread.h>
#include <CorePlatform/WordWait.h>
#include <Executors/CoreMutex.h>
#include <Executors/RepeatTimer.h>

#include <atomic>
#include <cstdint>
#include <utility>

namespace tvxcore {
namespace threads {

namespace {

constexpr std::int64_t kMillisecond = 1'000'000;

} // namespace

// A turn is one run of the function. It is scheduled, becomes due, is queued to the executor, runs, and is scheduled
// again; it is in one of these states at a time, so a slow executor never has two turns of a function.
//
// Only the RepeatDelayFunction keeps a reference to the executor. A turn in the executor's queue owns this state, so an
// owning reference to the executor here would form a cycle.
struct TVXCORE_LOCAL RepeatDelayFunction::State final : RepeatEntry,
                                                        std::enable_shared_from_this<RepeatDelayFunction::State>
{
    State(AsyncExecutor& inExecutor, const boost::function<void()>& inFunction, unsigned int inDelay)
        : mExecutor(inExecutor), mDelay(inDelay * kMillisecond), mFunction(inFunction)
    {
    }

    void BecomeDue() override;
    void Run();
    void End();

    struct Turn
    {
        std::shared_ptr<State> mState;
        void operator()() const { mState->Run(); }
    };

private:
    class Running;

    bool QueueTurn();
    void CallFunction() TVXCORE_REQUIRES(mMutex);

    AsyncExecutor& mExecutor;
    const std::int64_t mDelay;
    CoreMutex mMutex; // locked before the timer's lock
    boost::function<void()> mFunction TVXCORE_GUARDED_BY(mMutex);
    bool mIsEnded TVXCORE_GUARDED_BY(mMutex) = false;
    bool mIsEndedByItself TVXCORE_GUARDED_BY(mMutex) = false;
    unsigned long mRunner TVXCORE_GUARDED_BY(mMutex) = 0; // the thread that runs the function
    std::atomic<std::uint32_t> mRunsEnded{0};
};

// Releases the lock while the function runs; the function may throw.
class TVXCORE_SCOPED_LOCK RepeatDelayFunction::State::Running
{
public:
    explicit Running(State& ioState) TVXCORE_RELEASES(ioState.mMutex) : mState(ioState)
    {
        ioState.mRunner = GetCurrentThreadID();
        ioState.mMutex.unlock();
    }

    ~Running() TVXCORE_RELEASES()
    {
        mState.mMutex.lock();
        mState.mRunner = 0;
        ++mState.mRunsEnded;
        Platform::WakeAllOnWord_Impl(mState.mRunsEnded);
        if (!mState.mIsEnded) {
            RepeatTimer::ScheduleAgain(mState, mState.mDelay);
        }
    }

private:
    State& mState;
};

void RepeatDelayFunction::State::BecomeDue()
{
    if (!QueueTurn()) {
        const CoreMutexLock lock(mMutex);
        if (!mIsEnded) {
            RepeatTimer::ScheduleAgain(*this, mDelay);
        }
    }
}

// Returns false if out of memory; the next turn may succeed. An executor that refuses a turn is terminating, which ends
// the repetition.
bool RepeatDelayFunction::State::QueueTurn()
{
    try {
        mExecutor.QueueFunction(Turn{shared_from_this()}, 0);
        return true;
    } catch (...) {
        return false;
    }
}

void RepeatDelayFunction::State::CallFunction()
{
    const boost::function<void()>* const function = &mFunction; // End waits for the runner before it clears mFunction
    const Running running(*this);
    (*function)();
}

void RepeatDelayFunction::State::Run()
{
    boost::function<void()> finished; // destroyed after the function has returned and mMutex is unlocked
    const CoreMutexLock lock(mMutex);
    if (!mIsEnded) {
        CallFunction();
    }
    if (mIsEndedByItself) {
        finished.swap(mFunction);
    }
}

void RepeatDelayFunction::State::End()
{
    boost::function<void()> finished;
    {
        const CoreMutexLock lock(mMutex);
        mIsEnded = true;
        mIsEndedByItself = mRunner == GetCurrentThreadID();
        while (mRunner != 0 && !mIsEndedByItself && !Platform::ProcessIsEnding_Impl()) {
            const std::uint32_t before = mRunsEnded;
            mMutex.unlock();
            Platform::WaitOnWord_Impl(mRunsEnded, before, Platform::kEndless);
            mMutex.lock();
        }
        if (!mIsEndedByItself) {
            finished.swap(mFunction);
        }
    }
    RepeatTimer::Remove(*this);
}

RepeatDelayFunction::RepeatDelayFunction(const boost::shared_ptr<AsyncExecutor>& inExecutor,
                                         const boost::function<void()>& inFunction, unsigned int inDelay)
    : mExecutor(inExecutor), mState(std::make_shared<State>(*inExecutor, inFunction, inDelay))
{
    RepeatTimer::Add();
    RepeatTimer::Schedule(*mState, inDelay * kMillisecond);
}

RepeatDelayFunction::~RepeatDelayFunction()
{
    mState->End();
}

} // namespace threads
} // namespace tvxcore
