#include "ExecutorSupport.h"

#include <CheckRecorder.h>
#include <Executors/CoreClock.h>
#include <Executors/RepeatTimer.h>
#include <ProcessThreads.h>
#include <Signals.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <boost/make_shared.hpp>
#include <boost/thread/exceptions.hpp>
#include <boost/weak_ptr.hpp>
#include <cstdint>
#include <memory>
#include <new>
#include <stdexcept>
#include <thread>
#include <vector>

using namespace ORLTest;
using namespace tvxcore::threads;

namespace {

constexpr std::int64_t kMillisecond = 1'000'000;

// A host's executor; the tests use only QueueFunction.
class HostExecutor : public AsyncExecutor
{
public:
    unsigned int GetThreadCount() override { return 1; }
    void RequestTermination() override {}
    bool IsTerminated() override { return false; }
    bool CurrentThreadIsExecutorThread() override { return false; }
    void WaitForTermination() override {}
    void Pause() override {}
    void Resume() override {}
    void BlockWhilePaused() override {}
};

class RepeatDelayFunctionTest : public testing::Test
{
protected:
    // Advances the clock and returns when everything that became due has run.
    void AdvanceAndDrain(std::int64_t inMilliseconds)
    {
        mClock.Advance(inMilliseconds * kMillisecond);
        Drain(*mExecutor);
    }

    const unsigned int mThreadsBefore = ORLTest::CountProcessThreads();
    ManualClock mClock;
    ExecutorPointer mExecutor = MakeExecutor(1);
    std::atomic<int> mRuns{0};
};

} // namespace

TEST_F(RepeatDelayFunctionTest, RunsFirstAfterTheDelayAndThenAgainAndAgain)
{
    const RepeatDelayFunction repeat(
        mExecutor, [this] { ++mRuns; }, 10);
    AdvanceAndDrain(9);
    EXPECT_EQ(0, mRuns);
    AdvanceAndDrain(1);
    EXPECT_EQ(1, mRuns);
    AdvanceAndDrain(9);
    EXPECT_EQ(1, mRuns);
    AdvanceAndDrain(1);
    EXPECT_EQ(2, mRuns);
}

TEST_F(RepeatDelayFunctionTest, LateTurns_DoNotShiftTheTimesThatFollow)
{
    const RepeatDelayFunction repeat(
        mExecutor, [this] { ++mRuns; }, 10);
    AdvanceAndDrain(13);
    EXPECT_EQ(1, mRuns);
    AdvanceAndDrain(7);
    EXPECT_EQ(2, mRuns) << "due at 20, though the first run came at 13";
}

TEST_F(RepeatDelayFunctionTest, TurnsThatWereMissed_AreNotMadeUpFor)
{
    const RepeatDelayFunction repeat(
        mExecutor, [this] { ++mRuns; }, 10);
    AdvanceAndDrain(75);
    EXPECT_EQ(1, mRuns);
    AdvanceAndDrain(9);
    EXPECT_EQ(1, mRuns) << "after a miss the delay counts from the end of the run";
    AdvanceAndDrain(1);
    EXPECT_EQ(2, mRuns);
}

TEST_F(RepeatDelayFunctionTest, RunLongerThanTheDelay_LeavesTheDelayBehindItself)
{
    const RepeatDelayFunction repeat(
        mExecutor,
        [this] {
            ++mRuns;
            mClock.Advance(35 * kMillisecond);
        },
        10);
    AdvanceAndDrain(10);
    EXPECT_EQ(1, mRuns);
    AdvanceAndDrain(9);
    EXPECT_EQ(1, mRuns);
    AdvanceAndDrain(1);
    EXPECT_EQ(2, mRuns);
}

TEST_F(RepeatDelayFunctionTest, SlowExecutor_NeverHasMoreThanOneTurn)
{
    const RepeatDelayFunction repeat(
        mExecutor, [this] { ++mRuns; }, 10);
    mExecutor->Pause();
    for (int i = 0; i < 20; ++i) {
        mClock.Advance(10 * kMillisecond);
    }
    EXPECT_EQ(0, mRuns);
    mExecutor->Resume();
    Drain(*mExecutor);
    EXPECT_EQ(1, mRuns);
}

TEST_F(RepeatDelayFunctionTest, DelayOfZero_RunsAgainAsSoonAsItHasRun)
{
    Event enough;
    const RepeatDelayFunction repeat(
        mExecutor,
        [&] {
            if (++mRuns == 100) {
                enough.Set();
            }
        },
        0);
    enough.Wait();
}

TEST_F(RepeatDelayFunctionTest, SeveralFunctions_KeepTheirOwnTimes)
{
    BlockingList<char> order;
    const RepeatDelayFunction third(
        mExecutor, [&] { order.Add('c'); }, 30);
    const RepeatDelayFunction first(
        mExecutor, [&] { order.Add('a'); }, 10);
    const RepeatDelayFunction second(
        mExecutor, [&] { order.Add('b'); }, 20);
    for (int i = 0; i < 6; ++i) {
        AdvanceAndDrain(10);
    }
    const std::vector<char> runs = order.Get();
    EXPECT_EQ(6, std::count(runs.begin(), runs.end(), 'a'));
    EXPECT_EQ(3, std::count(runs.begin(), runs.end(), 'b'));
    EXPECT_EQ(2, std::count(runs.begin(), runs.end(), 'c'));
}

TEST_F(RepeatDelayFunctionTest, FunctionThatThrows_IsReportedAndRunsAgain)
{
    const CheckRecorder recorder;
    const RepeatDelayFunction repeat(
        mExecutor,
        [this] {
            ++mRuns;
            throw std::runtime_error("reason");
        },
        10);
    AdvanceAndDrain(10);
    AdvanceAndDrain(10);
    EXPECT_EQ(2, mRuns);
    EXPECT_EQ(2u, recorder.Reports(ORLTest::CheckReport::kError).size());
}

TEST_F(RepeatDelayFunctionTest, Destroyed_NeverRunsAgain)
{
    {
        const RepeatDelayFunction repeat(
            mExecutor, [this] { ++mRuns; }, 10);
        AdvanceAndDrain(10);
    }
    AdvanceAndDrain(100);
    EXPECT_EQ(1, mRuns);
}

TEST_F(RepeatDelayFunctionTest, DestroyedWhileRunning_ReturnsOnlyAfterTheRun)
{
    for (int round = 0; round < 100; ++round) {
        Event isRunning;
        Event mayEnd;
        std::atomic<bool> hasRun{false};
        auto repeat = std::make_unique<RepeatDelayFunction>(
            mExecutor,
            [&] {
                isRunning.Set();
                mayEnd.Wait();
                hasRun = true;
            },
            10);
        mClock.Advance(10 * kMillisecond);
        isRunning.Wait();
        bool hadRun = false;
        std::thread destroyer([&] {
            repeat.reset();
            hadRun = hasRun;
        });
        mayEnd.Set();
        destroyer.join();
        EXPECT_TRUE(hadRun);
    }
}

TEST_F(RepeatDelayFunctionTest, DestroyedByItsOwnFunction_DoesNotWaitForItself)
{
    auto life = std::make_shared<int>();
    const std::weak_ptr<int> watch = life;
    std::unique_ptr<RepeatDelayFunction> repeat;
    bool livesInside = false;
    repeat = std::make_unique<RepeatDelayFunction>(
        mExecutor,
        [&, life] {
            ++mRuns;
            repeat.reset();
            livesInside = life != nullptr && !watch.expired();
        },
        10);
    life.reset();
    AdvanceAndDrain(10);
    AdvanceAndDrain(100);
    EXPECT_EQ(1, mRuns);
    EXPECT_TRUE(livesInside) << "a function must outlive its own run";
    EXPECT_TRUE(watch.expired());
}

TEST_F(RepeatDelayFunctionTest, DestroyedWithATurnInTheQueue_LetsTheFunctionGoAtOnce)
{
    auto life = std::make_shared<int>();
    const std::weak_ptr<int> watch = life;
    {
        const RepeatDelayFunction repeat(
            mExecutor, [this, life] { ++mRuns; }, 10);
        life.reset();
        mExecutor->Pause();
        mClock.Advance(10 * kMillisecond);
    }
    EXPECT_TRUE(watch.expired());
    mExecutor->Resume();
    AdvanceAndDrain(10);
    EXPECT_EQ(0, mRuns);
}

TEST_F(RepeatDelayFunctionTest, Executor_LivesAsLongAsTheObjectAndNoLonger)
{
    ExecutorPointer executor = MakeExecutor(1);
    const boost::weak_ptr<AsyncThreadedExecutor> watch(executor);
    AsyncThreadedExecutor& queue = *executor;
    auto repeat = std::make_unique<RepeatDelayFunction>(
        executor, [this] { ++mRuns; }, 10);
    executor.reset();
    EXPECT_FALSE(watch.expired());
    queue.Pause();
    mClock.Advance(10 * kMillisecond);
    repeat.reset();
    EXPECT_TRUE(watch.expired()) << "a turn in the queue must not hold the queue";
    EXPECT_EQ(0, mRuns);
}

TEST_F(RepeatDelayFunctionTest, ExecutorThatTerminatesMeanwhile_EndsTheRepetition)
{
    const RepeatDelayFunction repeat(
        mExecutor, [this] { ++mRuns; }, 10);
    AdvanceAndDrain(10);
    mExecutor->RequestTermination();
    mExecutor->WaitForTermination();
    mClock.Advance(10 * kMillisecond);
    mClock.Advance(10 * kMillisecond);
    EXPECT_EQ(1, mRuns);
}

TEST_F(RepeatDelayFunctionTest, ExecutorThatRunsAtOnceOnTheTimersThread_MayDestroyTheObject)
{
    class Inline : public HostExecutor
    {
    public:
        bool QueueFunction(const Function& inFunction, int) override
        {
            inFunction();
            return true;
        }
    };
    const auto executor = boost::make_shared<Inline>();
    std::unique_ptr<RepeatDelayFunction> repeat;
    repeat = std::make_unique<RepeatDelayFunction>(
        executor,
        [&] {
            if (++mRuns == 3) {
                repeat.reset();
            }
        },
        10);
    for (int i = 0; i < 5; ++i) {
        mClock.Advance(10 * kMillisecond);
    }
    EXPECT_EQ(3, mRuns);
    EXPECT_EQ(nullptr, repeat);
    // The single thread of mExecutor remains.
    ORLTest::WaitForProcessThreads(mThreadsBefore + 1);
}

TEST_F(RepeatDelayFunctionTest, ExecutorWithoutMemory_IsTriedAgainAfterTheDelay)
{
    class Poor : public HostExecutor
    {
    public:
        bool QueueFunction(const Function& inFunction, int) override
        {
            if (mTries++ % 2 == 0) {
                throw std::bad_alloc();
            }
            inFunction();
            return true;
        }
        int mTries = 0;
    };
    const auto executor = boost::make_shared<Poor>();
    const RepeatDelayFunction repeat(
        executor, [this] { ++mRuns; }, 10);
    mClock.Advance(10 * kMillisecond);
    EXPECT_EQ(0, mRuns);
    mClock.Advance(10 * kMillisecond);
    EXPECT_EQ(1, mRuns);
}

TEST_F(RepeatDelayFunctionTest, TimersThread_LivesOnlyWhileThereIsSomethingToRepeat)
{
    for (int round = 0; round < 20; ++round) {
        {
            const RepeatDelayFunction first(
                mExecutor, [this] { ++mRuns; }, 10);
            const RepeatDelayFunction second(
                mExecutor, [this] { ++mRuns; }, 10);
            AdvanceAndDrain(10);
        }
        ORLTest::WaitForProcessThreads(mThreadsBefore + 1);
    }
    EXPECT_EQ(40, mRuns);
}

TEST_F(RepeatDelayFunctionTest, ThreadThatTheSystemRefuses_ThrowsAndTheNextTryMaySucceed)
{
    const auto refuse = [](void (*)(void*), void*, Platform::ThreadHandle&) { return false; };
    EXPECT_THROW(RepeatTimer::Add(refuse), boost::thread_resource_error);
    const RepeatDelayFunction repeat(
        mExecutor, [this] { ++mRuns; }, 10);
    EXPECT_NO_THROW(RepeatTimer::Add(refuse)) << "the thread is there already";
    struct Entry : RepeatEntry
    {
        void BecomeDue() override {}
    } entry;
    RepeatTimer::Remove(entry);
    AdvanceAndDrain(10);
    EXPECT_EQ(1, mRuns);
}

TEST(RepeatDelayFunction, WithTheSystemsClock_RepeatsInTime)
{
    const ExecutorPointer executor = MakeExecutor(1);
    BlockingList<std::int64_t> times;
    const std::int64_t start = ClockNow();
    {
        const RepeatDelayFunction repeat(
            executor, [&times] { times.Add(ClockNow()); }, 5);
        times.WaitFor(4);
    }
    const std::vector<std::int64_t> all = times.Get();
    for (std::size_t i = 0; i < all.size(); ++i) {
        EXPECT_LE(5 * kMillisecond * static_cast<std::int64_t>(i + 1), all[i] - start) << "run " << i << " came early";
    }
}

TEST(RepeatDelayFunction, ManyMadeAndDestroyedOnManyThreads_NeverRunAfterTheirEnd)
{
    const ExecutorPointer executor = MakeExecutor(2);
    std::atomic<int> runs{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round < 200; ++round) {
                std::atomic<bool> isAlive{true};
                {
                    Event hasRun;
                    const RepeatDelayFunction repeat(
                        executor,
                        [&] {
                            EXPECT_TRUE(isAlive);
                            ++runs;
                            hasRun.Set();
                        },
                        0);
                    if (round % 2 == 0) {
                        hasRun.Wait();
                    }
                }
                isAlive = false;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    executor->RequestTermination();
    executor->WaitForTermination();
    EXPECT_LE(400, runs);
}
