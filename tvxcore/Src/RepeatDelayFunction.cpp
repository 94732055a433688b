#include <tvxcore/Executor.h>

#include <CoreMutex.h>
#include <CorePlatform/Thread.h>
#include <CorePlatform/WordWait.h>
#include <RepeatTimer.h>

#include <atomic>
#include <cstdint>
#include <mutex>
#include <utility>

namespace tvxcore {
namespace threads {

namespace {

using Lock = std::unique_lock<CoreMutex>;

constexpr std::int64_t kMillisecond = 1'000'000;

} // namespace

// A turn is scheduled, becomes due and is queued to the executor, runs, and is scheduled again. It is in one of these
// states at a time, so a slow executor never has more than one turn of a function.
//
// Only the RepeatDelayFunction keeps a reference to the executor. A turn in the executor's queue refers to this state,
// so an owning reference here would form a cycle.
struct TVXCORE_LOCAL RepeatDelayFunction::State final : RepeatEntry, std::enable_shared_from_this<RepeatDelayFunction::State>
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

    AsyncExecutor& mExecutor;
    const std::int64_t mDelay;
    CoreMutex mMutex; // guards the fields below, except mRunsEnded; locked before the timer's lock
    boost::function<void()> mFunction;
    bool mIsEnded = false;
    bool mIsEndedByItself = false;
    unsigned long mRunner = 0; // the thread that runs the function
    std::atomic<std::uint32_t> mRunsEnded{0};
};

// Exists while the function runs, which may end by an exception.
class RepeatDelayFunction::State::Running
{
public:
    Running(State& ioState, Lock& ioLock) : mState(ioState), mLock(ioLock)
    {
        mState.mRunner = GetCurrentThreadID();
        mLock.unlock();
    }

    ~Running()
    {
        mLock.lock();
        mState.mRunner = 0;
        ++mState.mRunsEnded;
        Platform::WakeAllOnWord_Impl(mState.mRunsEnded);
        if (!mState.mIsEnded) {
            RepeatTimer::ScheduleAgain(mState, mState.mDelay);
        }
    }

private:
    State& mState;
    Lock& mLock;
};

void RepeatDelayFunction::State::BecomeDue()
{
    if (!QueueTurn()) {
        const Lock lock(mMutex);
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

void RepeatDelayFunction::State::Run()
{
    boost::function<void()> finished;
    Lock lock(mMutex);
    if (!mIsEnded) {
        const Running running(*this, lock);
        mFunction();
    }
    if (mIsEndedByItself) {
        finished.swap(mFunction); // destroyed after it has returned, and without the lock
    }
    lock.unlock();
}

void RepeatDelayFunction::State::End()
{
    boost::function<void()> finished;
    Lock lock(mMutex);
    mIsEnded = true;
    mIsEndedByItself = mRunner == GetCurrentThreadID();
    while (mRunner != 0 && !mIsEndedByItself && !Platform::ProcessIsEnding_Impl()) {
        const std::uint32_t before = mRunsEnded;
        lock.unlock();
        Platform::WaitOnWord_Impl(mRunsEnded, before, Platform::kEndless);
        lock.lock();
    }
    if (!mIsEndedByItself) {
        finished.swap(mFunction);
    }
    lock.unlock();
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
